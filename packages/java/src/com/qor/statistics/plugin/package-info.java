/**
 * The program that the engine starts to run a Java extension.
 *
 * <p>{@link com.qor.statistics.plugin.Extension} is the whole of it. An extension itself needs nothing of this package;
 * what it calls stands in {@code com.qor.statistics.kova}.
 */
package com.qor.statistics.plugin;
