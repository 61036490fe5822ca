import com.qor.statistics.kova.CaseData;
import com.qor.statistics.kova.Engine;
import com.qor.statistics.kova.UserMissing;
import java.io.PrintStream;
import java.nio.charset.StandardCharsets;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;

/** Prints the cases, one a line; the arguments are what becomes of user-missing values, and the variables. */
public final class Cases {
  private Cases() {}

  private static String valueOf(CaseData cases, String name, int row) {
    return cases.isNumeric(name) ? String.valueOf(cases.numbers(name)[row]) : "<" + cases.texts(name)[row] + ">";
  }

  public static void main(String[] arguments) {
    PrintStream out = new PrintStream(System.out, true, StandardCharsets.UTF_8);
    String[] names = Arrays.copyOfRange(arguments, 1, arguments.length);
    CaseData cases = Engine.attach().readCases(UserMissing.valueOf(arguments[0]), names);
    out.println(String.join(" ", cases.names()) + " " + Arrays.toString(cases.groupEnds()));
    for (int row = 0; row < cases.caseCount(); ++row) {
      List<String> values = new ArrayList<>();
      for (String name : cases.names()) {
        values.add(valueOf(cases, name, row));
      }
      out.println(String.join(" ", values));
    }
  }
}
