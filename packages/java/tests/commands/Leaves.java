import java.io.IOException;

/** Starts a program that goes on when its own end has come. */
public final class Leaves {
  private Leaves() {}

  public static void main(String[] arguments) throws IOException {
    new ProcessBuilder("sleep", "600").start();
    System.out.println("begun");
  }
}
