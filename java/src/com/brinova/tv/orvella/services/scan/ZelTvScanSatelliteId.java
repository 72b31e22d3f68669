package com.brinova.tv.orvella.services.scan;

/**
 * A satellite as the builder names it: satellite id and satellite record id, written as the
 * text "id,recordId" (for instance "12,3") where the natives take or give it as a string.
 */
public record ZelTvScanSatelliteId(int satelliteId, int recordId) {
    /**
     * Reads "id,recordId" as the builder writes it: decimal numbers of 16 bits; a missing
     * part, or a text without a comma, gives 0 for the record id.
     *
     * @throws IllegalArgumentException when a part is not a decimal number
     */
    public static ZelTvScanSatelliteId parse(String text) {
        int comma = text.indexOf(',');
        String id = comma < 0 ? text : text.substring(0, comma);
        String record = comma < 0 ? "" : text.substring(comma + 1);
        return new ZelTvScanSatelliteId(part(id, text), part(record, text));
    }

    private static int part(String digits, String text) {
        if (digits.isEmpty()) {
            return 0;
        }
        try {
            return Integer.parseInt(digits.trim()) & 0xFFFF;
        } catch (NumberFormatException e) {
            throw new IllegalArgumentException("not a satellite id: \"" + text + "\"", e);
        }
    }

    /** The text the natives take: "id,recordId". */
    @Override
    public String toString() {
        return satelliteId + "," + recordId;
    }
}
