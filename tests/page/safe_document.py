"""Whether a document that the tool writes is closed to scripts and to the network, as readers of
XML and of HTML see it."""

import base64
import hashlib
import html.parser
import re
import xml.etree.ElementTree

SVG = "{http://www.w3.org/2000/svg}"
XHTML = "{http://www.w3.org/1999/xhtml}"
POLICY = "default-src 'none'; style-src 'sha256-{}'; base-uri 'none'; form-action 'none'"
# The values of attributes in the head of every page.
HEAD_VALUES = {
    "lang": "en", "charset": "utf-8", "http-equiv": "Content-Security-Policy",
    "name": "viewport|referrer",
    "content": "no-referrer|width=device-width, initial-scale=1|"
    + POLICY.format(r"[\w+/=]{44}"),
}


class Tags(html.parser.HTMLParser):
    """The elements as a reader of HTML sees them, who does not know XML."""

    VOID = {"meta", "path", "rect", "wbr"}

    def __init__(self):
        super().__init__(convert_charrefs=True)
        self.open, self.names, self.text = [], set(), []

    def handle_starttag(self, tag, attrs):
        self.names.add(tag)
        assert not any(name.startswith("on") or name == "style" for name, _ in attrs), attrs
        if tag not in self.VOID:
            self.open.append(tag)

    def handle_endtag(self, tag):
        if tag not in self.VOID:
            assert self.open.pop() == tag, tag

    def handle_data(self, data):
        self.text.append(data)

    def handle_comment(self, data):
        raise AssertionError(f"a comment: {data}")


def check(test, document, elements, values):
    """The document is well-formed XML of these elements and values of attributes. Returns it."""
    root = xml.etree.ElementTree.fromstring(document.decode("utf-8", errors="strict"))
    for element in root.iter():
        test.assertIn(element.tag, elements)
        for name, value in element.attrib.items():
            test.assertRegex(value, rf"\A(?:{values[name]})\Z")
    styles = [element.text for element in root.iter() if element.tag.endswith("}style")]
    test.assertEqual(len(styles), 1)
    test.assertNotRegex(styles[0], r"url\(|@import|expression|<")
    return root


def check_page(test, document, elements):
    """As HTML, the page has these elements alone, and a policy that forbids all but its style."""
    text = document.decode()
    tags = Tags()
    tags.feed(text)
    tags.close()
    test.assertEqual(tags.open, [])
    of_drawings = {f"{XHTML}{tag}" for tag in ("svg", "g", "rect", "path", "text")}
    test.assertLessEqual({f"{XHTML}{tag}" for tag in tags.names} - of_drawings, elements)
    style = text.split("<style>")[1].split("</style>")[0]
    digest = base64.b64encode(hashlib.sha256(style.encode()).digest()).decode()
    meta = f'<meta http-equiv="Content-Security-Policy" content="{POLICY.format(digest)}" />'
    test.assertIn(meta, text)
    # The policy precedes everything that it is to hold for.
    test.assertLess(text.index("Content-Security-Policy"), text.index("<style>"))
    check_links(test, text)


def check_links(test, text):
    """Each link leads to an element of the document, and no two elements share a name."""
    names = re.findall(r' id="([^"]*)"', text)
    test.assertEqual(len(names), len(set(names)))
    targets = set(re.findall(r' href="#([^"]*)"', text))
    test.assertLessEqual(targets, set(names))
