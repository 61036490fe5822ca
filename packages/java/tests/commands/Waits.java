import com.qor.statistics.kova.Engine;

/** Waits for ever: in a call of an engine that never answers, or without one. */
public final class Waits {
  private Waits() {}

  public static void main(String[] arguments) throws InterruptedException {
    System.out.println("waiting");
    if (arguments.length > 0) {
      System.out.println(Engine.attach().variableCount());
    }
    Thread.currentThread().join();
  }
}
