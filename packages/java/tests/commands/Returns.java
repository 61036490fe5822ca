import java.nio.charset.StandardCharsets;
import java.util.Arrays;

/** Shows its arguments, one a line, and returns. */
final class Returns {
  private Returns() {}

  public static void main(String[] arguments) {
    System.out.println(arguments.length + " arguments");
    for (String argument : arguments) {
      System.out.println(Arrays.toString(argument.getBytes(StandardCharsets.UTF_8)));
    }
  }
}
