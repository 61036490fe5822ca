package com.qor.statistics.plugin;

import com.qor.statistics.kova.Engine;
import com.qor.statistics.kova.KovaException;
import java.io.IOException;
import java.io.InputStream;
import java.net.ConnectException;
import java.net.InetAddress;
import java.net.Socket;
import java.net.SocketException;

/**
 * The main class of a process that the engine starts to run one command of a Java extension.
 *
 * <p>Its arguments are the engine's mode, the port on which the engine listens on 127.0.0.1, and the command's name. It
 * connects, reads one record, joins the engine and runs the command: the main method of the Main-Class of the jar of
 * that name on the class path, or of the class of that name. How the process ends:
 *
 * <ul>
 *   <li>0 when the command has returned and no thread of its own is left, as any Java program does;
 *   <li>the number that the command gives to {@link System#exit};
 *   <li>1, with the stack trace on the standard error stream, when the command has thrown an exception;
 *   <li>2, with one line on the standard error stream, when the command could not be run, or the engine went away
 *       while it ran: the connection stays open as long as the engine wants the command to run.
 * </ul>
 */
public final class Extension {
  private static final int NOT_RUN = 2;
  private static final int ARGUMENTS = 3;
  private static final int MOST_PORT = 65535;

  private Extension() {}

  /**
   * Runs a command for the engine.
   *
   * @param arguments the mode, the port and the command's name
   * @throws Throwable what the command throws
   */
  public static void main(String[] arguments) throws Throwable {
    StartRecord record = null;
    Command command = null;
    try {
      Socket engine = connect(arguments);
      record = readRecord(engine);
      Engine.initProcess(arguments[0], record.temporaryFolder(), record.processId(), record.language());
      command = Command.find(arguments[2]);
      endWithEngine(engine);
    } catch (IOException | KovaException | Command.NotFoundException e) {
      tell(e.getMessage());
      System.exit(NOT_RUN);
    }
    command.run(record.arguments());  // Outside: what the command throws is its own affair.
  }

  private static Socket connect(String[] arguments) throws IOException {
    if (arguments.length != ARGUMENTS) {
      throw new IOException("expected a mode, a port and a command as arguments, found " + arguments.length);
    }
    int port = portOf(arguments[1]);
    try {
      return new Socket(InetAddress.getByAddress(new byte[] {127, 0, 0, 1}), port);
    } catch (ConnectException e) {
      throw new IOException("no engine listens on port " + port + " of 127.0.0.1", e);
    }
  }

  private static int portOf(String text) throws IOException {
    if (text.matches("[0-9]{1,5}")) {
      int port = Integer.parseInt(text);
      if (port > 0 && port <= MOST_PORT) {
        return port;
      }
    }
    throw new IOException("expected a port from 1 to " + MOST_PORT + ", found \"" + text + "\"");
  }

  private static StartRecord readRecord(Socket engine) throws IOException {
    try {
      return StartRecord.read(engine.getInputStream());
    } catch (SocketException e) {
      throw new IOException("the connection to the engine failed: " + e.getMessage(), e);
    }
  }

  /** The engine sends nothing more; when its end of the connection goes, nobody waits for the command any longer. */
  private static void endWithEngine(Socket engine) {
    Thread thread = new Thread(() -> watch(engine), "engine watch");
    thread.setDaemon(true);
    thread.start();
  }

  private static void watch(Socket engine) {
    try {
      InputStream stream = engine.getInputStream();
      while (stream.read() >= 0) {
        // Whatever it is, the engine is there.
      }
    } catch (IOException e) {
      // A broken connection is one that has ended.
    }
    tell("the engine closed the connection; the command is ended");
    Runtime.getRuntime().halt(NOT_RUN);  // The command may hang in a call of the engine, and so might its own hooks.
  }

  private static void tell(String text) { System.err.println("kovajavaplugin: " + text); }
}
