package com.qor.statistics.kova;

import java.util.ArrayList;
import java.util.Collections;
import java.util.HashMap;
import java.util.List;
import java.util.Map;
import java.util.Optional;

/** The variables of the active data set, as they were when {@link Engine#dictionary} read them. Immutable. */
public final class Dictionary {
  private final List<Variable> variables;
  private final Map<String, Variable> byName = new HashMap<>();

  private Dictionary(List<Variable> variables) {
    this.variables = Collections.unmodifiableList(variables);
    for (Variable variable : variables) {
      byName.putIfAbsent(keyOf(variable.name()), variable);
    }
  }

  static Dictionary read() {
    int count = Native.getVariableCount();
    List<Variable> variables = new ArrayList<>(count);
    for (int i = 0; i < count; ++i) {
      variables.add(Variable.read(i));
    }
    return new Dictionary(variables);
  }

  /** Upper and lower case are the same for the letters A to Z, and for no others. */
  static String keyOf(String name) {
    char[] letters = name.toCharArray();
    for (int i = 0; i < letters.length; ++i) {
      if (letters[i] >= 'A' && letters[i] <= 'Z') {
        letters[i] += 'a' - 'A';
      }
    }
    return new String(letters);
  }

  /**
   * Tells the number of variables.
   *
   * @return the number of variables
   */
  public int size() { return variables.size(); }

  /**
   * Lists the variables.
   *
   * @return all variables in the order of the data set, in a list that can not be changed
   */
  public List<Variable> variables() { return variables; }

  /**
   * Finds a variable that must be there.
   *
   * @param name its name; upper and lower case are the same for the letters A to Z
   * @return the variable
   * @throws KovaException 98011 when there is none of that name
   */
  public Variable variable(String name) {
    return find(name).orElseThrow(() -> KovaException.noSuchVariable("Dictionary.variable", name));
  }

  /**
   * Finds a variable that may be there.
   *
   * @param name its name; upper and lower case are the same for the letters A to Z
   * @return the variable, or nothing
   */
  public Optional<Variable> find(String name) { return Optional.ofNullable(byName.get(keyOf(name))); }
}
