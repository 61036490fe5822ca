/** Waits for ever. */
public final class Sleeps {
  private Sleeps() {}

  public static void main(String[] arguments) throws InterruptedException {
    System.out.println("begun");
    Thread.currentThread().join();
  }
}
