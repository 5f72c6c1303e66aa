# SPDX-License-Identifier: MIT
"""Makes packages with the standard library, which copies no entry unread: python_zipfile.py BASE CHANNEL OUTPUT COUNT."""
import os
import shutil
import sys
import zipfile

base, channel, output, count = sys.argv[1:]
changes = {}
for folder, _, names in os.walk(channel):
    for name in names:
        path = os.path.join(folder, name)
        changes[os.path.relpath(path, channel)] = path
for number in range(int(count)):
    package = os.path.join(output, "%d.apk" % (number % 10))
    if os.path.exists(package):
        os.unlink(package)
    with zipfile.ZipFile(base) as source, zipfile.ZipFile(package, "w", zipfile.ZIP_DEFLATED) as out:
        for info in source.infolist():
            if info.filename not in changes:
                info.extra = b""
                with source.open(info) as content, out.open(info, "w") as target:
                    shutil.copyfileobj(content, target, 1 << 18)
        for name, path in sorted(changes.items()):
            out.write(path, name, zipfile.ZIP_STORED if name.endswith((".png", ".so")) else zipfile.ZIP_DEFLATED)
        out.writestr("assets/channel.json", '{"channel": %d}\n' % number)
