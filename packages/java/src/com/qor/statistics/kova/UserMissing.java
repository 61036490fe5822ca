package com.qor.statistics.kova;

/** What becomes of user-missing values when cases are read. */
public enum UserMissing {
  /** They are read as missing: NaN, and null in place of a text. */
  AS_MISSING,
  /** They are read as the values that they are. */
  AS_VALUE
}
