import com.qor.statistics.kova.Engine;

/** Asks the engine how many variables there are. */
public final class Counts {
  private Counts() {}

  public static void main(String[] arguments) { System.out.println(Engine.attach().variableCount()); }
}
