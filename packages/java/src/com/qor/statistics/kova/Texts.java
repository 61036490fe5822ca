package com.qor.statistics.kova;

import java.nio.ByteBuffer;
import java.nio.CharBuffer;
import java.nio.charset.CharacterCodingException;
import java.nio.charset.StandardCharsets;

/** Texts as the native side takes and gives them: UTF-8 without a NUL. */
final class Texts {
  private Texts() {}

  /** The text's bytes. A NUL would cut it short on its way, and half of a surrogate pair would become another text. */
  static byte[] bytes(String text) {
    if (text.indexOf('\0') >= 0) {
      throw new IllegalArgumentException("a text has a NUL character in it");
    }
    return outputBytes(text);
  }

  /** The bytes of a text that goes with its length, where a NUL is a character like any other. */
  static byte[] outputBytes(String text) {
    try {
      ByteBuffer encoded = StandardCharsets.UTF_8.newEncoder().encode(CharBuffer.wrap(text));
      byte[] bytes = new byte[encoded.remaining()];
      encoded.get(bytes);
      return bytes;
    } catch (CharacterCodingException e) {
      throw new IllegalArgumentException("a text has half of a surrogate pair in it", e);
    }
  }

  /** A text that the native side gave; nothing counts as empty. */
  static String text(byte[] bytes) { return bytes == null ? "" : new String(bytes, StandardCharsets.UTF_8); }

  /** The text of a value, without the blanks that fill it up to its variable's width. */
  static String value(byte[] bytes, int length) {
    int end = 0;
    for (int i = 0; i < length && bytes[i] != 0; ++i) {
      if (bytes[i] != ' ') {
        end = i + 1;
      }
    }
    return new String(bytes, 0, end, StandardCharsets.UTF_8);
  }

  static String value(byte[] bytes) { return value(bytes, bytes.length); }
}
