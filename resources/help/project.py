"""Writes what the HTML Help compiler and the resource compiler read."""

import html

from topic_pages import ROOT

TITLE = "Tervan track effects"
POPUP_STRING_BASE = 20000  # of string ids in the module: plus the help context

# The window: navigation pane with contents, index and full-text search, and a toolbar.
TRI_PANE, FOLLOW_CONTENTS, SEARCH_TAB, TITLE_OF_PAGE, ADVANCED_SEARCH, USER_POSITION = (
    1 << bit for bit in (5, 8, 10, 13, 17, 18)
)
EXPAND, BACK, FORWARD, HOME, OPTIONS, PRINT = (1 << bit for bit in (1, 2, 3, 6, 12, 13))
STYLE = TRI_PANE | FOLLOW_CONTENTS | SEARCH_TAB | TITLE_OF_PAGE | ADVANCED_SEARCH | USER_POSITION
BUTTONS = EXPAND | BACK | FORWARD | HOME | OPTIONS | PRINT
NAVIGATION_PX = 240
FRAME_PX = (80, 60, 1020, 760)  # left, top, right, bottom
WINDOW = (
    f'main="{TITLE}","tervanfx.hhc","tervanfx.hhk","{ROOT}","{ROOT}",,,,,'
    f"{STYLE:#x},{NAVIGATION_PX},{BUTTONS:#x},[{','.join(map(str, FRAME_PX))}],,,,,,,0"
)

SITEMAP = '<!DOCTYPE HTML PUBLIC "-//IETF//DTD HTML//EN">\n<HTML><BODY>\n<UL>\n{}\n</UL>\n</BODY></HTML>\n'
SITEMAP_ITEM = (
    '<LI><OBJECT type="text/sitemap"><param name="Name" value="{}"><param name="Local" value="{}"></OBJECT>'
)


def sitemap_item(name, file):
    return SITEMAP_ITEM.format(html.escape(name), file)


def symbol(topic):
    return "IDH_" + topic.file.removesuffix(".html").upper()


def project(topics, other_files):
    contexts = [topic for topic in topics.values() if topic.context is not None]
    return "\n".join(
        [
            "[OPTIONS]",
            "Compatibility=1.1 or later",
            "Compiled file=tervanfx.chm",
            "Contents file=tervanfx.hhc",
            "Index file=tervanfx.hhk",
            f"Default topic={ROOT}",
            "Default window=main",
            "Full-text search=Yes",
            "Language=0x409 English (United States)",
            f"Title={TITLE}",
            "",
            "[WINDOWS]",
            WINDOW,
            "",
            "[FILES]",
            *topics,
            *other_files,
            "",
            "[ALIAS]",
            *(f"{symbol(topic)}={topic.file}" for topic in contexts),
            "",
            "[MAP]",
            *(f"#define {symbol(topic)} {topic.context}" for topic in contexts),
            "",
        ]
    )


def contents(topics):
    """The overview, and below it the tree of the pages that the pages list."""

    def items(files):
        for file in files:
            yield sitemap_item(topics[file].heading, file)
            if topics[file].children:
                yield "<UL>"
                yield from items(topics[file].children)
                yield "</UL>"

    root = topics[ROOT]
    return SITEMAP.format("\n".join([sitemap_item(root.heading, ROOT), *items(root.children)]))


def index(topics):
    entries = sorted(
        ((keyword, topic.file) for topic in topics.values() for keyword in topic.keywords),
        key=lambda entry: entry[0].lower(),
    )
    return SITEMAP.format("\n".join(sitemap_item(*entry) for entry in entries))


def popup_strings(topics):
    def quoted(text):
        return '"' + text.replace('"', '""') + '"'

    controls = sorted((topic.context, topic.popup) for topic in topics.values() if topic.popup)
    lines = [f"  {POPUP_STRING_BASE + context}, {quoted(popup)}" for context, popup in controls]
    heading = "// Texts of the context help, by help context. Written by build_help.py."
    return "\n".join([heading, "STRINGTABLE", "{", *lines, "}", ""])
