package com.qor.statistics.kova;

/**
 * Stands for the class of this name in tests of the extension's process: no engine is called, since its pipes may lie in
 * an emulator, out of this process's reach.
 */
public final class Engine {
  private static String told = "";

  private Engine() {}

  public static void initProcess(String mode, String temporaryFolder, String processId, String language) {
    told = String.join(" ", mode, temporaryFolder, processId, language);
  }

  /** What initProcess was told. */
  public static String told() { return told; }
}
