package com.brinova.tv.orvella.services.scan;

import java.nio.ByteBuffer;
import java.nio.CharBuffer;
import java.nio.charset.CharacterCodingException;
import java.nio.charset.CharsetDecoder;
import java.nio.charset.CharsetEncoder;
import java.nio.charset.CodingErrorAction;
import java.nio.charset.StandardCharsets;

/**
 * Texts that cross the native boundary one byte per {@code int} element.
 *
 * <p>Names come from broadcast tables as raw bytes. They are decoded as UTF-8 when they are
 * valid UTF-8 and as ISO-8859-1 otherwise, after dropping a leading character-table selector
 * (bytes below 0x20, as broadcast texts may begin with) and the single-byte control codes
 * 0x80 to 0x9F (emphasis marks; 0x8A, a line break, becomes a space).
 */
final class ScanText {
    private ScanText() {}

    /** Decodes the bytes from {@code from} up to the first 0, at most {@code max} of them. */
    static String decode(int[] elements, int from, int max) {
        int end = from;
        int limit = Math.min(elements.length, from + max);
        while (end < limit && (elements[end] & 0xFF) != 0) {
            end++;
        }
        int start = from;
        if (start < end && (elements[start] & 0xFF) < 0x20) {
            // A table selector: 0x10 is followed by two bytes naming the table, 0x1F by one.
            int selector = elements[start] & 0xFF;
            start += selector == 0x10 ? 3 : selector == 0x1F ? 2 : 1;
            start = Math.min(start, end);
        }
        byte[] bytes = new byte[end - start];
        for (int i = start; i < end; i++) {
            bytes[i - start] = (byte) elements[i];
        }
        CharsetDecoder utf8 = StandardCharsets.UTF_8.newDecoder()
                .onMalformedInput(CodingErrorAction.REPORT)
                .onUnmappableCharacter(CodingErrorAction.REPORT);
        try {
            return utf8.decode(ByteBuffer.wrap(bytes)).toString().trim();
        } catch (CharacterCodingException notUtf8) {
            StringBuilder text = new StringBuilder(bytes.length);
            for (byte b : bytes) {
                int c = b & 0xFF;
                if (c == 0x8A) {
                    text.append(' ');
                } else if (c < 0x80 || c > 0x9F) {
                    text.append((char) c);
                }
            }
            return text.toString().trim();
        }
    }

    /**
     * Encodes a name for the builder: ISO-8859-1 when every character has a byte there,
     * UTF-8 otherwise; cut to at most {@code max} bytes without splitting a UTF-8 sequence.
     */
    static byte[] encode(String name, int max) {
        CharsetEncoder latin1 = StandardCharsets.ISO_8859_1.newEncoder();
        byte[] bytes;
        boolean utf8 = !latin1.canEncode(name);
        if (utf8) {
            bytes = name.getBytes(StandardCharsets.UTF_8);
        } else {
            try {
                ByteBuffer encoded = latin1.encode(CharBuffer.wrap(name));
                bytes = new byte[encoded.remaining()];
                encoded.get(bytes);
            } catch (CharacterCodingException cannotHappen) {
                bytes = name.getBytes(StandardCharsets.UTF_8);
                utf8 = true;
            }
        }
        if (bytes.length <= max) {
            return bytes;
        }
        int cut = max;
        if (utf8) {
            while (cut > 0 && (bytes[cut] & 0xC0) == 0x80) {
                cut--; // back to the first byte of the sequence that does not fit
            }
        }
        byte[] shortened = new byte[cut];
        System.arraycopy(bytes, 0, shortened, 0, cut);
        return shortened;
    }
}
