/**
 * What an extension, or a program that {@code kovadx run} starts, needs to work with the data and the output of a
 * running statistics engine.
 *
 * <p>{@link com.qor.statistics.kova.Engine#attach} is where everything begins:
 *
 * <pre>{@code
 * Engine engine = Engine.attach();
 * CaseData cases = engine.readCases("species", "body_mass_g");
 * double[] masses = cases.numbers("body_mass_g");
 * try (Procedure procedure = engine.startProcedure("Summary", "Summary of the penguins")) {
 *   PivotTable table = procedure.table("Body mass", "Body mass by species", "Summary");
 *   Dimension rows = table.rows("Species");
 *   ...
 * }
 * }</pre>
 *
 * <p><b>Errors.</b> A call that the engine refuses, or that does not reach it, ends in a {@link
 * com.qor.statistics.kova.KovaException}, which is unchecked. A null argument ends in a {@link
 * java.lang.NullPointerException}, and a text that has a NUL character in it or half of a surrogate pair in an {@link
 * java.lang.IllegalArgumentException}, before the engine is asked.
 *
 * <p><b>Texts</b> travel as UTF-8. Bytes of the engine's that are none are read as U+FFFD. The blanks that fill the
 * texts of a variable up to its width are never seen.
 *
 * <p><b>Positions</b> of variables and cases count from 0.
 *
 * <p><b>Threads.</b> All of it may be used on any thread. A process makes one call of the engine at a time, so threads
 * take turns. Output goes where it was said last: threads that build one table agree on who does what when.
 */
package com.qor.statistics.kova;
