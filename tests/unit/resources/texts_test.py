"""The texts of each language against the English ones, and what the pseudo-language makes of those.

Usage: texts_test.py FOLDER, where the scripts and pseudo_language.py lie
"""

import pathlib
import re
import sys
import tempfile
import unittest

sys.path.insert(0, sys.argv[1])
import pseudo_language  # noqa: E402

FOLDER = pathlib.Path(sys.argv[1])
ENGLISH = pseudo_language.texts(pseudo_language.read(FOLDER / "mvpinguirc_en.rc"))

# What is the same in every language, in its order: conversions, ends of lines, mnemonics, markup.
FRAME = re.compile(r"%.|\\[rn]|&(?!\w+;)|<[^<>]*>|&\w+;")

# The same word in another language.
SAME = {"de": {"TEXT_OK", "TEXT_ENTER_PIN_LABEL", "IDS_ABOUT_VERSION_FORMAT"},
        "es": {"TEXT_ENTER_PIN_LABEL"},
        "fr": {"TEXT_OK", "IDS_ABOUT_VERSION_FORMAT"},
        "it": {"TEXT_OK", "TEXT_ENTER_PIN_LABEL", "TEXT_UNLOCK_INIT_TOOL_CAPTION"},
        "qps-ploc": {"IDS_CAPS_LOCK_SYSTEM_BEGIN"}}


class TextsTest(unittest.TestCase):
    def languages(self):
        for script in sorted(FOLDER.glob("mvpinguirc_*.rc")):
            language = script.stem.removeprefix("mvpinguirc_")
            if language != "en":
                yield language, pseudo_language.texts(pseudo_language.read(script))
        with tempfile.TemporaryDirectory() as folder:
            made = pathlib.Path(folder) / "made.rc"
            pseudo_language.main(FOLDER / "mvpinguirc_en.rc", made)
            yield "qps-ploc", pseudo_language.texts(pseudo_language.read(made))

    def test_every_language_says_what_english_says(self):
        self.assertGreater(len(ENGLISH), 100)
        for language, texts in self.languages():
            with self.subTest(language):
                self.assertEqual(list(texts), list(ENGLISH), "the same texts in the same order")
                same = {name for name, text in texts.items() if text == ENGLISH[name]}
                self.assertEqual(same, SAME[language], "left in English")
            for name, text in texts.items():
                with self.subTest(language, name=name):
                    self.assertTrue(text.strip())
                    self.assertEqual(FRAME.findall(text), FRAME.findall(ENGLISH[name]))
                    self.assertEqual(text[0] == " ", ENGLISH[name][0] == " ")
                    self.assertNotRegex(text, r"  | $")

    def test_the_pseudo_language_is_longer(self):
        for name, text in ENGLISH.items():
            length, made = (len(re.sub(r"\\(x..|.)", "c", each))
                            for each in (text, pseudo_language.pseudo(text)))
            self.assertGreaterEqual(made, length * (2 if length <= 10 else 1.4), name)


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
