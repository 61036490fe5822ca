/** Is busy for ever. */
public final class Loops {
  private static volatile long turns;

  private Loops() {}

  public static void main(String[] arguments) {
    System.out.println("begun");
    for (;;) {
      ++turns;
    }
  }
}
