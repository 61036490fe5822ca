/** Has a main method that nothing can run without an object. */
public final class NoMain {
  public void main(String[] arguments) { System.out.println("run"); }
}
