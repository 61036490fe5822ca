import com.qor.statistics.kova.CellStyle;
import com.qor.statistics.kova.Dictionary;
import com.qor.statistics.kova.Dimension;
import com.qor.statistics.kova.Engine;
import com.qor.statistics.kova.PivotTable;
import com.qor.statistics.kova.Procedure;
import com.qor.statistics.kova.Variable;

/** Makes output of every kind. */
public final class Output {
  private static final CellStyle[] PLAIN_STYLES = {CellStyle.COEFFICIENT, CellStyle.COEFFICIENT_STANDARD_ERROR,
      CellStyle.COEFFICIENT_VARIANCE, CellStyle.CORRELATION, CellStyle.GENERAL_STATISTIC, CellStyle.COUNT,
      CellStyle.PERCENT, CellStyle.PERCENT_WITHOUT_SIGN, CellStyle.PROPORTION, CellStyle.SIGNIFICANCE,
      CellStyle.RESIDUAL};

  private Output() {}

  private static void styles(Procedure procedure, Variable mass) {
    PivotTable table = procedure.table("Styles", "Numbers", "Numbers");
    Dimension columns = table.columns("Style", false, true);
    Dimension rows = table.rows("Kind", true, false);
    rows.category(1.5);
    CellStyle[] ofVariable = {CellStyle.meanOf(mass), CellStyle.standardDeviationOf(mass), CellStyle.valueOf(mass),
        CellStyle.differenceOf(mass), CellStyle.sumOf(mass)};
    int number = 0;
    for (CellStyle style : PLAIN_STYLES) {
      columns.category(++number);
      table.cell(style, 0.25);
    }
    for (CellStyle style : ofVariable) {
      columns.category(++number);
      table.cell(style, 0.25);
    }
    table.hideTitle();
    table.minimumColumnWidth(3);
    table.maximumColumnWidth(7);
  }

  private static void values(Procedure procedure, Dictionary dictionary) {
    Variable sex = dictionary.variable("sex");
    Variable species = dictionary.variable("species");
    PivotTable table = procedure.table("Values", "Cells", "Cells", true);
    Dimension rows = table.rows("Row");
    Dimension columns = table.columns("Column");
    Dimension layers = table.layers("Layer");
    layers.category("Front");
    rows.category(species);
    rows.categoryFootnote("a category");
    rows.footnote("a dimension");
    columns.category(sex, 1);
    table.cell("Käse 😀");
    table.cellFootnote("a cell");
    columns.category(sex, 2);
    table.cell(sex);
    rows.category(species, "Adelie");
    table.cell(sex, 9);
    columns.category(sex, 1);
    table.cell(species, "Gentoo");
    layers.category("Back");
    table.dateCell("2024-02-29");
    table.caption("Below");
    table.captionFootnote("Below", "a caption");
    table.outlineFootnote("an outline");
    table.titleFootnote("a title");
  }

  public static void main(String[] arguments) {
    Engine engine = Engine.attach();
    engine.post("posted alone\n");
    try (Procedure procedure = engine.startProcedure("Output", "All kinds")) {
      Dictionary dictionary = engine.dictionary();
      procedure.footnote("a procedure");
      procedure.textBlock("Text", "A title", "A line", 1);
      engine.post("posted within\n");
      styles(procedure, dictionary.variable("body_mass_g"));
      values(procedure, dictionary);
      procedure.nextSplitGroup();
      procedure.textBlock("Text", "Second", "Another line", 0);
    }
    engine.startProcedure("Nameless").close();
  }
}
