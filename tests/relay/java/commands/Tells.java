import com.qor.statistics.kova.Engine;

/** Shows what the process was told, and the entries of the environment as the engine wrote them. */
public final class Tells {
  private Tells() {}

  public static void main(String[] arguments) {
    System.out.println(Engine.told());
    System.out.println(arguments.length + " arguments");
    for (String name : new String[] {"KOVA_HOME", "KOVADXTEMP", "CLASSPATH"}) {
      System.out.println(name + "=" + System.getenv("TOLD_" + name));
    }
    System.err.println("to the error stream");
  }
}
