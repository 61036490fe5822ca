import java.io.IOException;

/** Has itself killed. */
public final class Dies {
  private Dies() {}

  public static void main(String[] arguments) throws IOException, InterruptedException {
    System.out.println("begun");
    new ProcessBuilder("kill", "-9", Long.toString(ProcessHandle.current().pid())).start();
    Thread.currentThread().join();
  }
}
