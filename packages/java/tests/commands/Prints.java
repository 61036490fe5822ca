/** Prints to both streams, and once more when its main method has returned. */
public final class Prints {
  private Prints() {}

  public static void main(String[] arguments) {
    System.out.print("without a line end, ");
    System.out.println("with one");
    System.err.println("to the error stream");
    Thread main = Thread.currentThread();
    new Thread(() -> printBehind(main)).start();
  }

  private static void printBehind(Thread main) {
    try {
      main.join();
      System.out.println("later");
    } catch (InterruptedException e) {
      System.out.println("interrupted");
    }
  }
}
