import com.qor.statistics.kova.Dictionary;
import com.qor.statistics.kova.Engine;
import com.qor.statistics.kova.MissingValues;
import com.qor.statistics.kova.Variable;
import java.io.PrintStream;
import java.nio.charset.StandardCharsets;
import java.util.Locale;

/** Prints the dictionary; with an argument the print formats and positions too. */
public final class Describe {
  private static final PrintStream OUT = new PrintStream(System.out, true, StandardCharsets.UTF_8);

  private Describe() {}

  private static String plain(double value) {
    return value == Math.rint(value) ? String.valueOf((long) value) : String.valueOf(value);
  }

  private static void describe(Variable variable, boolean isFull) {
    OUT.println("\n" + variable + ": " + variable.label());
    String kind = variable.isNumeric() ? "number" : "string of " + variable.width() + " bytes";
    OUT.println("  " + kind + ", " + variable.measurementLevel().name().toLowerCase(Locale.ROOT));
    variable.numberLabels().forEach((value, label) -> OUT.println("  value " + plain(value) + ": " + label));
    variable.textLabels().forEach((value, label) -> OUT.println("  value " + value + ": " + label));
    describe(variable.missingValues());
    if (isFull) {
      OUT.println("  at " + variable.position() + ", " + variable.format() + " = " + variable.format().code() + " "
          + variable.format().width() + " " + variable.format().decimals());
    }
  }

  private static void describe(MissingValues missing) {
    if (missing.hasRange()) {
      OUT.println("  missing: " + plain(missing.low()) + " to " + plain(missing.high()));
    }
    for (double value : missing.numbers()) {
      OUT.println("  missing: " + plain(value));
    }
    missing.texts().forEach(value -> OUT.println("  missing: " + value));
  }

  public static void main(String[] arguments) {
    Engine engine = Engine.attach();
    Dictionary dictionary = engine.dictionary();
    OUT.println(engine.variableCount() + " variables, " + engine.caseCount() + " cases");
    dictionary.variables().forEach(variable -> describe(variable, arguments.length > 0));
  }
}
