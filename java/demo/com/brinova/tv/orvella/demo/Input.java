package com.brinova.tv.orvella.demo;

import java.io.Console;
import java.util.concurrent.CompletableFuture;
import java.util.concurrent.ExecutionException;

/**
 * The terminal's input, read by one thread of its own. A line typed while somebody waits
 * for an answer ({@link #nextLine()}) is that answer; a line typed at any other time is
 * handed to the idle handler (during a scan: cancel it).
 */
final class Input {
    private final Console console;
    private final Runnable onIdleLine;
    private final Object lock = new Object();
    private CompletableFuture<String> waiting; // guarded by lock
    private boolean ended;                     // guarded by lock

    Input(Console console, Runnable onIdleLine) {
        this.console = console;
        this.onIdleLine = onIdleLine;
        Thread reader = new Thread(this::readLines, "demo-input");
        reader.setDaemon(true);
        reader.start();
    }

    private void readLines() {
        while (true) {
            String line = console.readLine();
            CompletableFuture<String> answer;
            synchronized (lock) {
                answer = waiting;
                waiting = null;
                ended = line == null;
            }
            if (answer != null) {
                answer.complete(line);
            } else if (line != null) {
                onIdleLine.run();
            }
            if (line == null) {
                return;
            }
        }
    }

    /** The next line typed, or null when the input has ended. */
    String nextLine() {
        CompletableFuture<String> answer = new CompletableFuture<>();
        synchronized (lock) {
            if (ended) {
                return null;
            }
            waiting = answer;
        }
        try {
            return answer.get();
        } catch (InterruptedException e) {
            Thread.currentThread().interrupt();
            return null;
        } catch (ExecutionException cannotHappen) {
            return null;
        }
    }
}
