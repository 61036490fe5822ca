/** Does nothing. */
public final class Silent {
  private Silent() {}

  public static void main(String[] arguments) {}
}
