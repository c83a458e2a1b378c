// Writes the files named after the folder as an archive to standard output, with the run-time library's own zip writer.
import java.io.OutputStream;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.zip.ZipEntry;
import java.util.zip.ZipOutputStream;

public class Streamed {
    public static void main(String[] arguments) throws Exception {
        try (ZipOutputStream zip = new ZipOutputStream(System.out)) {
            for (int i = 1; i < arguments.length; i++) {
                ZipEntry entry = new ZipEntry(arguments[i]);
                entry.setTimeLocal(java.time.LocalDateTime.of(2020, 1, 2, 3, 4, 6));
                zip.putNextEntry(entry);
                Files.copy(Path.of(arguments[0], arguments[i]), (OutputStream) zip);
                zip.closeEntry();
            }
        }
    }
}
