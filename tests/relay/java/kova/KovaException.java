package com.qor.statistics.kova;

/** Stands for the class of this name; nobody throws it here. */
public final class KovaException extends RuntimeException {
  private static final long serialVersionUID = 1L;

  private KovaException() {}
}
