"""The archive: the same tree as the package's, for those who have no installer. The same tree gives
the same bytes: files stand in order, with one time and one set of rights."""

import time
import zipfile


def make_archive(stage, output, folder, seconds):
    """Packs the files below stage as FOLDER/... into output; seconds are those of every file."""
    moment = time.gmtime(seconds)[:6]
    with zipfile.ZipFile(output, "w") as archive:
        for path in sorted(path for path in stage.rglob("*") if path.is_file()):
            entry = zipfile.ZipInfo(f"{folder}/{path.relative_to(stage).as_posix()}", moment)
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.create_system = 3
            entry.external_attr = 0o100644 << 16
            archive.writestr(entry, path.read_bytes())
