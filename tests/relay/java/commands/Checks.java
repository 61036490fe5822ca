/** Ends with 9 unless its arguments are the numbers from 0, as many as the first one tells, with an umlaut behind each. */
public final class Checks {
  private Checks() {}

  public static void main(String[] arguments) {
    boolean isWhole = arguments.length == Integer.parseInt(arguments[0]) + 1;
    for (int i = 1; i < arguments.length; ++i) {
      isWhole &= arguments[i].equals((i - 1) + "\u00fc");
    }
    System.exit(isWhole ? 0 : 9);
  }
}
