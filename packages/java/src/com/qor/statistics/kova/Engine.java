package com.qor.statistics.kova;

import java.util.Objects;

/**
 * The statistics engine that this process works for. A process has one: {@link #attach} gives it, again and again.
 *
 * <p>An extension has been joined to its engine when its main method begins. A program that {@code kovadx run -- java
 * ...} starts finds its engine by the environment variables KOVA_HOME and KOVA_XNAME. There is nothing to close: the
 * conversation ends with the process.
 */
public final class Engine {
  private static final String ADVICE = "Start this program with: kovadx run --data FOLDER -- java PROGRAM";

  private static Engine attached;

  private Engine() {}

  /**
   * Gives this process's engine. Nothing is asked of it yet.
   *
   * @return the engine, the same at each call
   * @throws KovaException 17 when nobody has told this process of an engine; 99114 when the library of this package,
   *     or the client library beside it, can not be loaded from the home folder
   */
  public static synchronized Engine attach() {
    if (attached == null) {
      String home = System.getenv("KOVA_HOME");
      String name = System.getenv("KOVA_XNAME");
      if (isEmpty(home) || isEmpty(name)) {
        throw noEngine("Engine.attach", ADVICE);
      }
      Native.load(home);
      Native.setXNameAndSHome(Texts.bytes(name), Texts.bytes(home));
      attached = new Engine();
    }
    return attached;
  }

  /**
   * Joins this process to the engine that has started it as the runtime of a language. {@code Extension} does so before
   * it runs a command; a program that takes its place does it once, before {@link #attach}. Nothing is asked of the
   * engine yet.
   *
   * @param mode the engine's mode, as the engine tells it
   * @param temporaryFolder the engine's folder for temporary files
   * @param processId the text that the names of the engine's pipes begin with
   * @param language the name of the language, in upper case
   * @throws KovaException 17 when the environment variable KOVA_HOME does not tell the home folder; 99114 when the
   *     library of this package, or the client library beside it, can not be loaded from there
   */
  public static synchronized void initProcess(String mode, String temporaryFolder, String processId, String language) {
    String home = System.getenv("KOVA_HOME");
    if (isEmpty(home)) {
      throw noEngine("Engine.initProcess", "The environment variable KOVA_HOME names no home folder.");
    }
    Native.load(home);
    Native.initXProcess(Texts.bytes(mode), Texts.bytes(temporaryFolder), Texts.bytes(processId), Texts.bytes(language));
    attached = new Engine();
  }

  private static boolean isEmpty(String text) { return text == null || text.isEmpty(); }

  private static KovaException noEngine(String function, String advice) {
    return new KovaException(function, KovaException.ENGINE_NOT_STARTED, "EngineNotStarted", advice);
  }

  /**
   * Tells the number of variables of the active data set.
   *
   * @return the number of variables
   * @throws KovaException 98004 when no data set is open
   */
  public int variableCount() { return Native.getVariableCount(); }

  /**
   * Reads all that is said of one variable of the active data set.
   *
   * @param position its position, from 0
   * @return the variable as it is now
   * @throws KovaException 10 when there is none at that position; 98004 when no data set is open
   */
  public Variable variable(int position) { return Variable.read(position); }

  /**
   * Reads all that is said of the variables of the active data set.
   *
   * @return the dictionary as it is now
   * @throws KovaException 98004 when no data set is open
   */
  public Dictionary dictionary() { return Dictionary.read(); }

  /**
   * Tells the number of cases of the active data set.
   *
   * @return the number of cases, those that a filter leaves out included
   * @throws KovaException 98004 when no data set is open
   */
  public int caseCount() { return Native.getRowCount(); }

  /**
   * Reads the cases in one pass, user-missing values as missing.
   *
   * @param names the names of the variables to be read; upper and lower case are the same for the letters A to Z; all
   *     variables when none is given
   * @return the cases, those alone that a filter selects
   * @throws KovaException 98011 when no variable has such a name; 98004 when no data set is open; what ends the pass
   *     before its time, such as 109 when the engine has gone
   */
  public CaseData readCases(String... names) { return readCases(UserMissing.AS_MISSING, names); }

  /**
   * Reads the cases in one pass.
   *
   * @param userMissing what becomes of user-missing values; a number without any value is NaN in either case
   * @param names the names of the variables to be read, as for {@link #readCases(String...)}
   * @return the cases, those alone that a filter selects
   * @throws KovaException as {@link #readCases(String...)} does
   */
  public CaseData readCases(UserMissing userMissing, String... names) {
    return new CaseReader(Objects.requireNonNull(userMissing), names).read();
  }

  /**
   * Hands command syntax to the engine and waits until it has been carried out.
   *
   * @param syntax the commands, one line or more
   * @throws KovaException what the engine answers, such as 98140 for a command that it does not have
   */
  public void submit(String syntax) { Native.submit(Texts.outputBytes(syntax)); }

  /**
   * Shows text as it is, in the open procedure's output or, without one, by itself.
   *
   * @param text one line or more; it may have NUL characters
   * @throws KovaException what the engine answers
   */
  public void post(String text) { Native.postKovaOutput(Texts.outputBytes(text)); }

  /**
   * Opens a procedure, to which output belongs, under its name alone.
   *
   * @param name what the procedure is called in every language
   * @return the procedure, to be closed
   * @throws KovaException what the engine answers, such as its refusal of a second procedure
   */
  public Procedure startProcedure(String name) { return startProcedure(name, name); }

  /**
   * Opens a procedure, to which output belongs. One is open at a time.
   *
   * @param name what the procedure is called in every language
   * @param label the heading that people read
   * @return the procedure, to be closed
   * @throws KovaException what the engine answers, such as its refusal of a second procedure
   */
  public Procedure startProcedure(String name, String label) {
    byte[] nameBytes = Texts.bytes(name);
    Native.startProcedure(nameBytes, Texts.bytes(label));
    return new Procedure(nameBytes);
  }
}
