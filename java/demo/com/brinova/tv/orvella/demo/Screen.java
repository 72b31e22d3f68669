package com.brinova.tv.orvella.demo;

import java.io.Console;
import java.io.PrintStream;
import java.nio.charset.Charset;
import java.nio.charset.StandardCharsets;
import java.util.Locale;

/**
 * The demo's output. On a terminal the progress bar stays on the last line and is redrawn
 * in place, with the other lines scrolling above it; otherwise everything is plain lines,
 * progress included (one line each time it moves by a step).
 */
final class Screen {
    private static final int BAR_WIDTH = 28;
    private static final int PLAIN_PROGRESS_STEP = 10;

    private final PrintStream out = System.out;
    private final boolean terminal;
    private final boolean unicode;

    private String bar;          // the bar as last drawn, null when none is on screen
    private int lastPlainPercent = -PLAIN_PROGRESS_STEP;

    Screen(boolean terminal) {
        this.terminal = terminal;
        Console console = System.console();
        Charset charset = console != null ? console.charset() : Charset.defaultCharset();
        this.unicode = terminal && StandardCharsets.UTF_8.equals(charset);
    }

    boolean isTerminal() {
        return terminal;
    }

    String arrow() {
        return unicode ? "\u2192" : "->";
    }

    String dot() {
        return unicode ? "\u00b7" : "-";
    }

    // ---- styles (empty off a terminal) ----

    String bold(String s) {
        return style("1", s);
    }

    String dim(String s) {
        return style("2", s);
    }

    String green(String s) {
        return style("32", s);
    }

    String cyan(String s) {
        return style("36", s);
    }

    String yellow(String s) {
        return style("33", s);
    }

    String red(String s) {
        return style("31", s);
    }

    private String style(String code, String s) {
        return terminal ? "\u001b[" + code + "m" + s + "\u001b[0m" : s;
    }

    // ---- output ----

    /** Prints a line above the progress bar. */
    synchronized void line(String text) {
        if (bar != null) {
            out.print("\r\u001b[K");
        }
        out.println(text);
        if (bar != null) {
            out.print(bar);
        }
        out.flush();
    }

    /** Prints a question and leaves the cursor after it (no progress bar is shown then). */
    synchronized void prompt(String text) {
        if (bar != null) {
            out.println();
            bar = null;
        }
        out.print(text);
        out.flush();
    }

    /** Prints a problem on the error stream, above the progress bar. */
    synchronized void error(String text) {
        if (bar != null) {
            out.print("\r\u001b[K");
            out.flush();
        }
        System.err.println(red(text));
        System.err.flush();
        if (bar != null) {
            out.print(bar);
            out.flush();
        }
    }

    /** Shows the scan's progress. */
    synchronized void progress(int percent, int services, String frequency) {
        int p = Math.max(0, Math.min(100, percent));
        String status = String.format(Locale.ROOT, "%3d%%  %s %s  %s", p,
                bold(Integer.toString(services)), services == 1 ? "service" : "services",
                frequency == null ? "" : cyan(frequency));
        if (terminal) {
            int filled = p * BAR_WIDTH / 100;
            String done = (unicode ? "\u2588" : "#").repeat(filled);
            String left = (unicode ? "\u2591" : "-").repeat(BAR_WIDTH - filled);
            bar = "  [" + green(done) + dim(left) + "] " + status;
            out.print("\r\u001b[K" + bar);
            out.flush();
        } else if (p >= lastPlainPercent + PLAIN_PROGRESS_STEP || (p == 100 && lastPlainPercent < 100)) {
            lastPlainPercent = p;
            out.println("  progress " + status.trim());
            out.flush();
        }
    }

    /** Leaves the bar where it is (as the last line of the scan) and goes on below it. */
    synchronized void endProgress() {
        if (bar != null) {
            out.println();
            bar = null;
            out.flush();
        }
    }
}
