import com.qor.statistics.kova.CaseData;
import com.qor.statistics.kova.Dimension;
import com.qor.statistics.kova.Engine;
import com.qor.statistics.kova.KovaException;
import com.qor.statistics.kova.PivotTable;
import com.qor.statistics.kova.Procedure;

/** Shows what goes wrong, one line each. */
public final class Failures {
  private static final Engine ENGINE = Engine.attach();

  private Failures() {}

  private static void show(Runnable call) {
    try {
      call.run();
      System.out.println("no failure");
    } catch (KovaException e) {
      System.out.println(e.getMessage());
    } catch (RuntimeException e) {
      System.out.println(e.getClass().getSimpleName() + ": " + e.getMessage());
    }
  }

  private static void ofReading() {
    show(() -> ENGINE.variable(7));
    show(() -> ENGINE.variable(-1));
    show(() -> ENGINE.dictionary().variable("age"));
    show(() -> ENGINE.readCases("species", "age"));
    CaseData cases = ENGINE.readCases("SPECIES", "body_mass_g");
    show(() -> cases.numbers("species"));
    show(() -> cases.texts("body_mass_g"));
    show(() -> cases.numbers("island"));
    show(() -> ENGINE.submit("fly"));
  }

  private static void ofOutput() {
    show(() -> ENGINE.startProcedure("a\0b"));
    show(() -> ENGINE.startProcedure("half of a pair: \ud83d"));
    Procedure procedure = ENGINE.startProcedure("First");
    show(() -> ENGINE.startProcedure("Second"));
    PivotTable table = procedure.table("Outline", "Title", "Subtype");
    show(() -> table.cell(1));
    Dimension rows = table.rows("Row");
    show(() -> table.cell(1));
    show(() -> table.minimumColumnWidth(1001));
    show(() -> rows.category(ENGINE.variable(0), 1.5));
    procedure.close();
    show(procedure::close);
    show(() -> table.cell(1));
  }

  public static void main(String[] arguments) {
    ofReading();
    ofOutput();
    try {
      ENGINE.variable(7);
    } catch (KovaException e) {
      System.out.println(e.code() + "|" + e.name() + "|" + e.advice());
    }
  }
}
