package com.qor.statistics.kova;

/** What may be done with a variable's values. */
public enum MeasurementLevel {
  /** Nobody has said. */
  UNKNOWN,
  /** Names without an order. */
  NOMINAL,
  /** Names with an order. */
  ORDINAL,
  /** Amounts. */
  SCALE;

  /** The level of that code; unknown for a code that an engine has of its own. */
  static MeasurementLevel ofCode(int code) { return code >= 0 && code < values().length ? values()[code] : UNKNOWN; }
}
