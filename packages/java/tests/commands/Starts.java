import java.io.IOException;

/** Starts a program, and waits for ever. */
public final class Starts {
  private Starts() {}

  public static void main(String[] arguments) throws IOException, InterruptedException {
    new ProcessBuilder("sleep", "600").start();
    System.out.println("begun");
    Thread.currentThread().join();
  }
}
