import com.qor.statistics.kova.CaseData;
import com.qor.statistics.kova.CellStyle;
import com.qor.statistics.kova.Dictionary;
import com.qor.statistics.kova.Dimension;
import com.qor.statistics.kova.Engine;
import com.qor.statistics.kova.KovaException;
import com.qor.statistics.kova.PivotTable;
import com.qor.statistics.kova.Procedure;
import com.qor.statistics.kova.Variable;
import java.util.ArrayList;
import java.util.List;
import java.util.Locale;
import java.util.Map;
import java.util.TreeMap;

/**
 * Shows the body mass of the penguins by species and island as a pivot table of the engine's.
 *
 * <pre>
 * kovadx run --data examples/penguins -- java -cp kovajavaplugin.jar:examples/penguins/Summary.jar Summary
 * </pre>
 */
public final class Summary {
  private static final String SPECIES = "species";
  private static final String ISLAND = "island";
  private static final String MASS = "body_mass_g";

  private final Engine engine = Engine.attach();
  private final Dictionary dictionary = engine.dictionary();

  private Summary() {}

  /** The body masses of a species on an island, and how many penguins were not weighed. */
  private static final class Group {
    final List<Double> masses = new ArrayList<>();
    int unknown;

    void add(double mass) {
      if (Double.isNaN(mass)) {
        ++unknown;
      } else {
        masses.add(mass);
      }
    }
  }

  private static double mean(List<Double> values) {
    return values.stream().mapToDouble(Double::doubleValue).average().orElse(Double.NaN);
  }

  private static double standardDeviation(List<Double> values) {
    double mean = mean(values);
    double squares = values.stream().mapToDouble(value -> (value - mean) * (value - mean)).sum();
    return Math.sqrt(squares / (values.size() - 1));
  }

  /** The groups by species and, within it, by island. */
  private Map<String, Map<String, Group>> readGroups() {
    CaseData cases = engine.readCases(SPECIES, ISLAND, MASS);
    String[] species = cases.texts(SPECIES);
    String[] islands = cases.texts(ISLAND);
    double[] masses = cases.numbers(MASS);
    Map<String, Map<String, Group>> groups = new TreeMap<>();
    for (int i = 0; i < cases.caseCount(); ++i) {
      Map<String, Group> onIslands = groups.computeIfAbsent(species[i], name -> new TreeMap<>());
      onIslands.computeIfAbsent(islands[i], name -> new Group()).add(masses[i]);
    }
    return groups;
  }

  private void checkVariables() {
    List<String> missing = new ArrayList<>();
    for (String name : List.of(SPECIES, ISLAND, MASS)) {
      if (dictionary.find(name).isEmpty()) {
        missing.add(name);
      }
    }
    if (!missing.isEmpty()) {
      fail("the data have no variable " + String.join(", ", missing) + "; give kovadx run --data examples/penguins");
    }
  }

  /** The cells of one row, each with the style for its kind. */
  private void fillRow(PivotTable table, Dimension columns, Group group) {
    Variable mass = dictionary.variable(MASS);
    columns.category("Count");
    table.cell(CellStyle.COUNT, group.masses.size());
    if (group.unknown > 0) {
      table.cellFootnote(group.unknown + " not weighed");
    }
    columns.category("Mean");
    table.cell(CellStyle.meanOf(mass), mean(group.masses));
    columns.category("Std. deviation");
    table.cell(CellStyle.standardDeviationOf(mass), standardDeviation(group.masses));
  }

  private void showTable(PivotTable table, Map<String, Map<String, Group>> groups) {
    Dimension species = table.rows("Species");
    Dimension islands = table.rows("Island");
    Dimension columns = table.columns("Statistics", false, true);
    List<Double> masses = new ArrayList<>();
    groups.forEach((name, onIslands) -> onIslands.forEach((island, group) -> {
      species.category(dictionary.variable(SPECIES), name);
      islands.category(dictionary.variable(ISLAND), island);
      fillRow(table, columns, group);
      masses.addAll(group.masses);
    }));
    table.caption(String.format(Locale.ROOT, "%d penguins, mean %.2f g", masses.size(), mean(masses)));
    table.titleFootnote("Penguins that were weighed");
  }

  private void show() {
    checkVariables();
    Map<String, Map<String, Group>> groups = readGroups();
    try (Procedure procedure = engine.startProcedure("Summary", "Summary of the penguins")) {
      showTable(procedure.table("Body mass", "Body mass (g) by species and island", "Summary"), groups);
    }
  }

  private static void fail(String text) {
    System.err.println("Summary: " + text);
    System.exit(1);
  }

  /**
   * Shows the table.
   *
   * @param arguments none
   */
  public static void main(String[] arguments) {
    try {
      new Summary().show();
    } catch (KovaException e) {
      fail(e.getMessage());
    }
  }
}
