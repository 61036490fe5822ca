/** Fails before its main method begins. */
public final class StaticFailure {
  private static final int NUMBER = Integer.parseInt("none");

  private StaticFailure() {}

  public static void main(String[] arguments) { System.out.println(NUMBER); }
}
