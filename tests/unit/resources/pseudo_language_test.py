"""What the pseudo-language makes of a script, and what it leaves as it is.

Usage: pseudo_language_test.py FOLDER, where pseudo_language.py lies
"""

import pathlib
import sys
import tempfile
import unittest

sys.path.insert(0, sys.argv[1])
import pseudo_language  # noqa: E402


class PseudoLanguageTest(unittest.TestCase):
    def test_texts(self):
        for text, expected in (
                ("OK", "[ÖK]"),
                ("Cancel", "[Çåååñçééél]"),
                (" (expired)", " [(éééxpîîîîrééééd)]"),
                ("&New PIN:", "[&Ñééééw PÎîîîîÑ:]"),
                ("Card expires on %s.", "[Çåård ééxpîîrééš öööñ %s.]"),
                # An escape is one character, and ends no word that is accented.
                (r"A line.\r\n\r\nAnother.", r"[Åå lîîñéé.\r\n\r\nÅåñööthéér.]"),
                (r"Wait\xA0: no", r"[Wåååîîît\xA0: ñöööö]"),
                # Tags and entities of rich text.
                ('<b style="color: red">Remove</b> &lt;it&gt; now',
                 '[<b style="color: red">R')):
            with self.subTest(text):
                made = pseudo_language.pseudo(text)
                self.assertTrue(made.startswith(expected), made)
                self.assertTrue(made.endswith("]"), made)
        for kept in ('<b style="color: red">', "</b>", "&lt;", "&gt;"):
            self.assertIn(kept, made)

    def test_script(self):
        script = ('#define TEXT_LANGUAGE LANG_ENGLISH\n#include "module.rc"\n'
                  '#define TEXT_A "Hel" \\\n    "lo"\n'
                  'IDS_B\n    "One \\"two\\" "\n    "three"\n'
                  'IDS_CAPS_LOCK_SYSTEM_BEGIN "As it is"\n// "Comment"\n')
        with tempfile.TemporaryDirectory() as folder:
            english, result = (pathlib.Path(folder) / name for name in ("en.rc", "qps.rc"))
            english.write_text(script, encoding="cp1252")
            pseudo_language.main(english, result)
            made = result.read_text(encoding="cp1252")
        self.assertEqual(made, '#define TEXT_LANGUAGE LANG_ENGLISH\n#include "module.rc"\n'
                               '#define TEXT_A "[Hééllööö]"\n'
                               'IDS_B\n    "[Öñéé \\"twöö\\" thréééé]"\n'
                               'IDS_CAPS_LOCK_SYSTEM_BEGIN "As it is"\n// "Comment"\n')


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
