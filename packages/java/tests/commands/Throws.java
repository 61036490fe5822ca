import java.io.IOException;

/** Ends with an exception. */
public final class Throws {
  private Throws() {}

  public static void main(String[] arguments) throws IOException { throw new IOException("the data are odd"); }
}
