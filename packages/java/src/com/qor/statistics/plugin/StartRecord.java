package com.qor.statistics.plugin;

import java.io.IOException;
import java.io.InputStream;
import java.nio.ByteBuffer;
import java.nio.ByteOrder;
import java.nio.charset.CharacterCodingException;
import java.nio.charset.StandardCharsets;
import java.util.ArrayList;
import java.util.Collections;
import java.util.List;

/**
 * What the engine tells the process of a Java extension: a length of 4 bytes, little-endian, which counts the whole
 * record with itself, then texts in UTF-8 with a NUL behind each: the folder for temporary files, the text that the
 * names of the engine's pipes begin with, the language's name, and the arguments of the command.
 *
 * <p>Immutable. Every byte is looked at before it is believed: the record comes from a socket.
 */
final class StartRecord {
  /** No record is longer; it stays far below what a command line may have. */
  static final int MOST_BYTES = 1 << 24;

  private static final int LENGTH_BYTES = 4;
  private static final int FIXED_TEXTS = 3;

  private final List<String> texts;

  private StartRecord(List<String> texts) { this.texts = Collections.unmodifiableList(texts); }

  /** A record that can not be right, with the reason as its message. */
  static final class DamagedException extends IOException {
    private static final long serialVersionUID = 1L;

    DamagedException(String reason) { super("the engine's record is damaged: " + reason); }
  }

  String temporaryFolder() { return texts.get(0); }

  String processId() { return texts.get(1); }

  String language() { return texts.get(2); }

  String[] arguments() { return texts.subList(FIXED_TEXTS, texts.size()).toArray(new String[0]); }

  /** Reads one record, in however many pieces it comes, and not a byte behind it. */
  static StartRecord read(InputStream stream) throws IOException {
    byte[] head = stream.readNBytes(LENGTH_BYTES);
    if (head.length == 0) {
      throw new DamagedException("the connection ended before it came");
    }
    if (head.length < LENGTH_BYTES) {
      throw new DamagedException(head.length + " bytes came of the " + LENGTH_BYTES + " of its length");
    }
    int length = ByteBuffer.wrap(head).order(ByteOrder.LITTLE_ENDIAN).getInt();
    if (length < LENGTH_BYTES || length > MOST_BYTES) {
      throw new DamagedException("its length can not be " + length);
    }
    byte[] rest = stream.readNBytes(length - LENGTH_BYTES);
    if (rest.length < length - LENGTH_BYTES) {
      throw new DamagedException((LENGTH_BYTES + rest.length) + " bytes came of " + length);
    }
    return new StartRecord(textsOf(rest));
  }

  private static List<String> textsOf(byte[] bytes) throws DamagedException {
    if (bytes.length > 0 && bytes[bytes.length - 1] != 0) {
      throw new DamagedException("its last text has no end");
    }
    List<String> found = new ArrayList<>();
    for (int begin = 0, end = 0; end < bytes.length; ++end) {
      if (bytes[end] == 0) {
        found.add(textOf(bytes, begin, end, found.size() + 1));
        begin = end + 1;
      }
    }
    if (found.size() < FIXED_TEXTS) {
      throw new DamagedException("it has " + found.size() + " texts, and at least " + FIXED_TEXTS + " are needed");
    }
    return found;
  }

  private static String textOf(byte[] bytes, int begin, int end, int number) throws DamagedException {
    try {
      return StandardCharsets.UTF_8.newDecoder().decode(ByteBuffer.wrap(bytes, begin, end - begin)).toString();
    } catch (CharacterCodingException e) {
      throw new DamagedException("its text " + number + " is not UTF-8");
    }
  }
}
