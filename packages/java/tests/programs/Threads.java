import com.qor.statistics.kova.CaseData;
import com.qor.statistics.kova.Engine;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.concurrent.ExecutionException;
import java.util.concurrent.ExecutorService;
import java.util.concurrent.Executors;
import java.util.concurrent.Future;

/** Asks on many threads at once, and looks whether each gets its own answers. */
public final class Threads {
  private static final int THREADS = 8;
  private static final int ROUNDS = 40;

  private Threads() {}

  private static String dictionaryText(Engine engine) {
    StringBuilder text = new StringBuilder();
    engine.dictionary().variables().forEach(
        variable -> text.append(variable.name()).append(variable.label()).append(variable.format()));
    return text.toString();
  }

  private static String casesText(Engine engine) {
    CaseData cases = engine.readCases();
    return Arrays.toString(cases.texts("species")) + Arrays.toString(cases.numbers("body_mass_g"));
  }

  private static int work(Engine engine, String dictionary, String cases) {
    int wrong = 0;
    for (int i = 0; i < ROUNDS; ++i) {
      wrong += dictionaryText(engine).equals(dictionary) ? 0 : 1;
      wrong += casesText(engine).equals(cases) ? 0 : 1;
    }
    return wrong;
  }

  public static void main(String[] arguments) throws InterruptedException, ExecutionException {
    Engine engine = Engine.attach();
    String dictionary = dictionaryText(engine);
    String cases = casesText(engine);
    ExecutorService threads = Executors.newFixedThreadPool(THREADS);
    List<Future<Integer>> results = new ArrayList<>();
    for (int i = 0; i < THREADS; ++i) {
      results.add(threads.submit(() -> work(engine, dictionary, cases)));
    }
    threads.shutdown();
    int wrong = 0;
    for (Future<Integer> result : results) {
      wrong += result.get();
    }
    System.out.println(wrong + " wrong answers");
  }
}
