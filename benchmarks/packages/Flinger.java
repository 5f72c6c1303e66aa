// SPDX-License-Identifier: MIT
import com.android.zipflinger.BytesSource;
import com.android.zipflinger.ZipArchive;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.Paths;
import java.util.List;
import java.util.stream.Collectors;
import java.util.stream.Stream;
import java.util.zip.Deflater;

/** Makes packages with Android's own archive library, which changes a copy where it is: BASE CHANNEL OUTPUT COUNT. */
public class Flinger {
    private static BytesSource aligned(BytesSource source) {
        source.align(source.getName().endsWith(".so") ? 16384 : 4);
        return source;
    }

    public static void main(String[] arguments) throws Exception {
        Path base = Paths.get(arguments[0]);
        Path channel = Paths.get(arguments[1]);
        List<Path> files;
        try (Stream<Path> found = Files.walk(channel)) {
            files = found.filter(Files::isRegularFile).sorted().collect(Collectors.toList());
        }
        int count = Integer.parseInt(arguments[3]);
        for (int number = 0; number < count; ++number) {
            Path target = Paths.get(arguments[2], (number % 10) + ".apk");
            Files.deleteIfExists(target);
            Files.copy(base, target);
            try (ZipArchive archive = new ZipArchive(target)) {
                for (Path file : files) {
                    String name = channel.relativize(file).toString();
                    boolean stored = name.endsWith(".png") || name.endsWith(".so");
                    archive.delete(name);
                    BytesSource source =
                        new BytesSource(file, name, stored ? Deflater.NO_COMPRESSION : Deflater.DEFAULT_COMPRESSION);
                    archive.add(stored ? aligned(source) : source);
                }
                byte[] content = ("{\"channel\": " + number + "}\n").getBytes(StandardCharsets.UTF_8);
                archive.add(new BytesSource(content, "assets/channel.json", Deflater.DEFAULT_COMPRESSION));
            }
        }
    }
}
