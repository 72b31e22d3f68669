package com.brinova.tv.orvella.services.scan;

import java.nio.charset.StandardCharsets;
import java.util.ArrayList;
import java.util.Collections;
import java.util.List;
import java.util.Objects;

/**
 * What the two satellite configurations share: the satellites the application has, from
 * which they answer the builder's satellite and transponder questions, and the answer of
 * every scan-maps command as a status.
 *
 * <p>Unlike the terrestrial builders, the satellite builder takes a status with each answer:
 * 0 means the output holds the answer, anything else is handed to the builder as it is and
 * nothing is written (the builder takes it as "no such satellite, transponder or service").
 * Commands the satellite list does not answer (every command, when the application gives no
 * satellites) go to the {@link CommandHandler}; without one they are answered 0 with an
 * output of zeros.
 */
public abstract class ZelTvDvbsConfigBase extends ZelTvScanConfig {
    /** The status of a question about something the application does not have. */
    public static final int STATUS_NOT_FOUND = -1;

    /** Answers the scan-maps commands that the satellite list does not. */
    @FunctionalInterface
    public interface CommandHandler {
        /**
         * @param input the command's input, null for commands without one
         * @param output where the answer goes, null for commands the builder takes no
         *     answer of
         * @return 0 when the output holds the answer; any other value goes to the builder
         */
        int onCommand(int command, String country, int[] input, int[] output);
    }

    private volatile List<ZelTvDvbsSatellite> mSatellites = Collections.emptyList();
    private volatile CommandHandler mCommandHandler;

    ZelTvDvbsConfigBase() {}

    /** The satellites the builder may ask about, looked up by their record ids. */
    public void setSatellites(List<ZelTvDvbsSatellite> satellites) {
        mSatellites = Collections.unmodifiableList(new ArrayList<>(satellites));
    }

    public List<ZelTvDvbsSatellite> getSatellites() {
        return mSatellites;
    }

    public void setCommandHandler(CommandHandler handler) {
        mCommandHandler = handler;
    }

    /** The satellite with this record id, or null. */
    public ZelTvDvbsSatellite findSatellite(int recordId) {
        for (ZelTvDvbsSatellite s : mSatellites) {
            if (s.getRecordId() == recordId) {
                return s;
            }
        }
        return null;
    }

    /** Called by the native side on a scan-builder thread for every scan-maps command. */
    final int onScanMapCommands(int command, String country, int[] input, int[] output) {
        try {
            // Without a satellite list the handler answers every command itself.
            Integer status = mSatellites.isEmpty() ? null
                    : answerFromSatellites(command, input, output);
            if (status != null) {
                return status;
            }
            CommandHandler handler = mCommandHandler;
            return handler == null ? 0 : handler.onCommand(command, country, input, output);
        } catch (RuntimeException e) { // nothing may stay pending on the builder's thread
            ScanCallbacks.LOG.log(System.Logger.Level.ERROR,
                    "scan-maps command " + command + " failed", e);
            return STATUS_NOT_FOUND;
        }
    }

    /**
     * Answers the commands of this configuration that the satellite list knows.
     *
     * @return the status, or null when the command is not one of them
     */
    abstract Integer answerFromSatellites(int command, int[] input, int[] output);

    /** Writes the bytes of a name, one per element, from `from`, at most `max` of them. */
    static void putName(int[] output, int from, String name, int max) {
        byte[] bytes = name.getBytes(StandardCharsets.UTF_8);
        int n = Math.min(Math.min(bytes.length, max), output.length - from);
        for (int i = 0; i < n; i++) {
            output[from + i] = bytes[i] & 0xFF;
        }
    }

    /** The name the builder passed, one byte per element, up to the first 0. */
    static String nameOf(int[] input, int from) {
        Objects.checkFromIndexSize(from, 0, input.length);
        int end = from;
        while (end < input.length && input[end] != 0) {
            end++;
        }
        byte[] bytes = new byte[end - from];
        for (int i = from; i < end; i++) {
            bytes[i - from] = (byte) input[i];
        }
        return new String(bytes, StandardCharsets.UTF_8);
    }

    /** Whether `idText` is a satellite identity: two numbers joined by a comma. */
    static boolean isIdText(String idText) {
        return idText != null && idText.matches("\\d{1,5},\\d{1,5}");
    }

    /** The record id of a satellite identity text, or -1 when it has none. */
    static int recordIdOf(String idText) {
        int comma = idText == null ? -1 : idText.indexOf(',');
        try {
            return comma < 0 ? -1 : Integer.parseInt(idText.substring(comma + 1));
        } catch (NumberFormatException e) {
            return -1;
        }
    }

    static boolean isCode(String code) {
        return code != null && code.length() == 3 && code.chars().allMatch(Character::isLetter);
    }
}
