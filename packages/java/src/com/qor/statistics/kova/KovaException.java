package com.qor.statistics.kova;

/**
 * A call that failed. Its message tells the function, the code, the code's name and what may be done about it, as in
 * {@code GetVariableCount: 98004 NoActiveDataSet. Start the engine with one: kovadx run --data.}
 */
public final class KovaException extends RuntimeException {
  private static final long serialVersionUID = 1L;

  /** Codes that this side gives by itself. */
  static final int ENGINE_NOT_STARTED = 17;

  static final int WRONG_KIND = 24;
  static final int LIBRARY_NOT_LOADED = 99114;

  private static final int NO_SUCH_VARIABLE = 98011;

  /** Never 0. */
  private final int code;

  /** Empty when nobody knows it. */
  private final String name;

  /** Empty when nobody knows any. */
  private final String advice;

  /** The library tells the name and the advice; it must have been loaded. The native side calls this too. */
  KovaException(String function, int code) {
    this(function, code, Texts.text(Native.errorName(code)), Texts.text(Native.errorAdvice(code)));
  }

  KovaException(String function, int code, String name, String advice) {
    super(messageOf(function, code, name, advice));
    this.code = code;
    this.name = name;
    this.advice = advice;
  }

  /** Tells the name too, which the function alone does not show. */
  static KovaException noSuchVariable(String function, String variable) {
    return new KovaException(function + "(\"" + variable + "\")", NO_SUCH_VARIABLE);
  }

  private static String messageOf(String function, int code, String name, String advice) {
    String known = name.isEmpty() ? "an error of the engine's own" : name;
    return (function + ": " + code + " " + known + ". " + advice).stripTrailing();
  }

  /**
   * Tells what kind of failure it is.
   *
   * @return the error code, never 0: a number of the platform below 98000, one of the engine's up to 98999, else one of
   *     the client library's
   */
  public int code() { return code; }

  /**
   * Tells the code's name.
   *
   * @return the name, such as NoActiveDataSet; empty for a code that an engine has of its own
   */
  public String name() { return name; }

  /**
   * Tells what may be done about it.
   *
   * @return one sentence or two; empty for a code that an engine has of its own
   */
  public String advice() { return advice; }
}
