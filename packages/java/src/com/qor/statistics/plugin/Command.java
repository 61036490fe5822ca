package com.qor.statistics.plugin;

import java.io.File;
import java.io.IOException;
import java.lang.reflect.InvocationTargetException;
import java.lang.reflect.Method;
import java.lang.reflect.Modifier;
import java.util.jar.Attributes;
import java.util.jar.JarFile;
import java.util.jar.Manifest;

/**
 * A command of an extension, found by its name: the main method of the class that the manifest of the jar of that name
 * tells as its Main-Class, or else of the class of that name.
 */
final class Command {
  private final Method main;

  private Command(Method main) { this.main = main; }

  /** There is no such command, with the reason as its message. */
  static final class NotFoundException extends Exception {
    private static final long serialVersionUID = 1L;

    NotFoundException(String reason) { super(reason); }
  }

  /** Looks on the class path. None of the command's own code runs yet. */
  static Command find(String name) throws NotFoundException {
    File jar = jarOf(name);
    String mainClass = jar == null ? null : mainClassOf(jar);
    try {
      return new Command(mainOf(mainClass == null ? name : mainClass));
    } catch (ClassNotFoundException e) {
      throw new NotFoundException(whyNotFound(name, jar, mainClass));
    } catch (LinkageError e) {
      throw new NotFoundException("the command " + name + " can not be loaded: " + e);
    }
  }

  /** Runs the command on this thread. What it throws comes out as it is. */
  void run(String[] arguments) throws Throwable {
    try {
      main.invoke(null, (Object) arguments);
    } catch (InvocationTargetException e) {
      throw e.getCause();
    }
  }

  private static File jarOf(String name) {
    for (String entry : System.getProperty("java.class.path", "").split(File.pathSeparator)) {
      File file = new File(entry);
      if (file.getName().equals(name + ".jar") && file.isFile()) {
        return file;
      }
    }
    return null;
  }

  private static String mainClassOf(File jar) throws NotFoundException {
    try (JarFile file = new JarFile(jar)) {
      Manifest manifest = file.getManifest();
      String named = manifest == null ? null : manifest.getMainAttributes().getValue(Attributes.Name.MAIN_CLASS);
      return named == null ? null : named.trim();
    } catch (IOException e) {
      throw new NotFoundException("can not read " + jar + ": " + e.getMessage());
    }
  }

  private static Method mainOf(String className) throws ClassNotFoundException, NotFoundException {
    Class<?> found = Class.forName(className, false, ClassLoader.getSystemClassLoader());
    Method method = null;
    try {
      method = found.getMethod("main", String[].class);
    } catch (NoSuchMethodException e) {
      throw new NotFoundException("the class " + className + " has no public static void main(String[])");
    }
    if (!Modifier.isStatic(method.getModifiers()) || method.getReturnType() != void.class) {
      throw new NotFoundException("the class " + className + " has no public static void main(String[])");
    }
    method.setAccessible(true);  // The class itself need not be public.
    return method;
  }

  private static String whyNotFound(String name, File jar, String mainClass) {
    if (mainClass != null) {
      return "the class " + mainClass + " was not found, which " + jar + " names as its Main-Class";
    }
    return jar == null
        ? "the command " + name + " was not found: the class path has neither " + name + ".jar nor a class " + name
        : "the command " + name + " was not found: " + jar + " names no Main-Class, and there is no class " + name;
  }
}
