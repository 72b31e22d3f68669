package com.brinova.tv.orvella.demo;

import java.util.List;
import java.util.function.Function;

/**
 * One question with numbered options: on a terminal the user answers (Enter takes the
 * default), otherwise a stated rule decides and the demo says which option it took.
 */
final class Choice {
    private final Screen screen;
    private final Input input; // null: decide by rule
    private volatile boolean asking;

    /** @param input where the user answers, or null to decide every question by rule */
    Choice(Screen screen, Input input) {
        this.screen = screen;
        this.input = input;
    }

    /** Whether questions go to the user (otherwise to the rules). */
    boolean asksUser() {
        return input != null;
    }

    /** Whether the user is being asked right now. */
    boolean isAsking() {
        return asking;
    }

    /** Lists the options and returns the index picked by the user or by the rule. */
    <T> int ask(List<T> options, Function<T, String> label, int byRule, String rule) {
        for (int i = 0; i < options.size(); i++) {
            String mark = input == null && i == byRule ? screen.yellow("*") : " ";
            screen.line(String.format("   %s%2d) %s", mark, i + 1, label.apply(options.get(i))));
        }
        if (input == null) {
            screen.line("  " + screen.yellow(screen.arrow()) + " chose " + (byRule + 1)
                    + " by rule: " + rule);
            return byRule;
        }
        asking = true;
        try {
            return askUser(options.size(), byRule, rule);
        } finally {
            asking = false;
        }
    }

    /**
     * Asks for one of `names` under a heading, the first being the rule's pick; prints and
     * returns the one taken.
     */
    String askName(String title, String what, List<String> names, String rule, String taken) {
        heading(title, what);
        String name = names.get(ask(names, n -> n, 0, rule));
        screen.line("  " + taken + " \"" + name + "\"");
        return name;
    }

    private int askUser(int count, int byRule, String rule) {
        while (true) {
            screen.prompt("  Choose 1-" + count + " [" + (byRule + 1) + "]: ");
            String answer = input.nextLine();
            if (answer == null || answer.isBlank()) {
                screen.line("  " + screen.yellow(screen.arrow()) + " default " + (byRule + 1)
                        + ": " + rule);
                return byRule;
            }
            try {
                int n = Integer.parseInt(answer.trim());
                if (n >= 1 && n <= count) {
                    screen.line("  " + screen.yellow(screen.arrow()) + " chose " + n);
                    return n - 1;
                }
            } catch (NumberFormatException notANumber) {
                // asked again below
            }
            screen.line("  " + screen.red("please answer a number from 1 to " + count));
        }
    }

    /** A heading above a question or a report. */
    void heading(String title, String what) {
        screen.endProgress();
        screen.line("");
        screen.line("  " + screen.bold(screen.yellow(title)) + screen.dim(" " + screen.dot()
                + " " + what));
    }
}
