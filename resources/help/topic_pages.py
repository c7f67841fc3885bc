"""Reads the topic pages and checks them.

A page is a complete HTML file. What the build takes from it:

    <meta name="help-context" content="35">     the number by which the module asks for the page; some pages have none
    <meta name="keywords" content="a; b">       its entries in the index
    <h1>                                        its name in the contents
    <p class="popup">                           the text of the control's popup, for the pages of controls
    <ul class="topics"> with links              the pages below it in the contents, in this order
"""

import dataclasses
import html.parser
import pathlib

ROOT = "overview.html"
PAGE_CONTEXTS = {3, 4, 5, 6}
CONTROL_CONTEXTS = {*range(10, 13), *range(20, 28), *range(30, 41), *range(60, 63)}
LONGEST_POPUP = 250  # more does not read well in a small window


class HelpError(Exception):
    pass


@dataclasses.dataclass
class Topic:
    file: str
    context: int | None = None
    heading: str = ""
    popup: str = ""
    keywords: list[str] = dataclasses.field(default_factory=list)
    links: list[str] = dataclasses.field(default_factory=list)
    anchors: set[str] = dataclasses.field(default_factory=set)
    children: list[str] = dataclasses.field(default_factory=list)


class TopicParser(html.parser.HTMLParser):
    """Fills a topic from its page."""

    def __init__(self, topic):
        super().__init__()
        self.topic = topic
        self.text_of = None  # the field that takes the text that follows
        self.in_children = False

    def handle_starttag(self, tag, attrs):
        attributes = dict(attrs)
        if tag == "meta" and attributes.get("name") == "help-context":
            self.topic.context = int(attributes["content"])
        elif tag == "meta" and attributes.get("name") == "keywords":
            self.topic.keywords = [word.strip() for word in attributes["content"].split(";")]
        elif tag == "h1":
            self.text_of = "heading"
        elif tag == "p" and attributes.get("class") == "popup":
            self.text_of = "popup"
        elif tag == "ul":
            self.in_children = attributes.get("class") == "topics"
        if "id" in attributes:
            self.topic.anchors.add(attributes["id"])
        for link in (attributes.get("href"), attributes.get("src")):
            if link:
                self.topic.links.append(link)
                if self.in_children:
                    self.topic.children.append(link)

    def handle_endtag(self, tag):
        if tag in ("h1", "p"):
            self.text_of = None
        elif tag == "ul":
            self.in_children = False

    def handle_data(self, data):
        if self.text_of:
            setattr(self.topic, self.text_of, getattr(self.topic, self.text_of) + data)


def read_topic(path):
    topic = Topic(path.name)
    parser = TopicParser(topic)
    parser.feed(path.read_text(encoding="utf-8"))
    parser.close()
    topic.heading = " ".join(topic.heading.split())
    topic.popup = " ".join(topic.popup.split())
    return topic


def read_topics(folder: pathlib.Path):
    """All topics by file name; raises HelpError with every fault found."""
    topics = {path.name: read_topic(path) for path in sorted(folder.glob("*.html"))}
    faults = [
        *(fault for topic in topics.values() for fault in faults_of_page(topic)),
        *faults_of_contexts(topics.values()),
        *faults_of_links(topics, folder),
        *faults_of_contents(topics),
        *faults_of_keywords(topics.values()),
    ]
    if faults:
        raise HelpError("\n".join(faults))
    return topics


def faults_of_page(topic):
    if not topic.heading:
        yield f"{topic.file}: no heading"
    if (topic.context in CONTROL_CONTEXTS) != bool(topic.popup):
        yield f"{topic.file}: the pages of controls have a popup text, and no others"
    if len(topic.popup) > LONGEST_POPUP:
        yield f"{topic.file}: a popup text of {len(topic.popup)} characters, more than {LONGEST_POPUP}"
    if not (topic.popup + topic.heading + "".join(topic.keywords)).isascii():
        yield f"{topic.file}: popup, heading or keywords are not plain ASCII, which every code page shows"


def faults_of_contexts(topics):
    found = [topic.context for topic in topics if topic.context is not None]
    for context in sorted(PAGE_CONTEXTS | CONTROL_CONTEXTS | set(found)):
        if found.count(context) != 1:
            yield f"help context {context}: {found.count(context)} pages"
        elif context not in PAGE_CONTEXTS | CONTROL_CONTEXTS:
            yield f"help context {context}: nothing asks for it"


def faults_of_links(topics, folder):
    for topic in topics.values():
        for link in topic.links:
            file, _, anchor = link.partition("#")
            file = file or topic.file
            if not (folder / file).is_file() or (anchor and anchor not in topics[file].anchors):
                yield f"{topic.file}: {link} leads nowhere"


def faults_of_contents(topics):
    listed = [ROOT, *(child for topic in topics.values() for child in topic.children)]
    for file in topics:
        if listed.count(file) != 1:
            yield f"{file}: {listed.count(file)} times in the contents"


def faults_of_keywords(topics):
    seen = {}
    for topic in topics:
        if not topic.keywords:
            yield f"{topic.file}: no keywords"
        for keyword in topic.keywords:
            if keyword.lower() in seen:
                yield f"{topic.file}: keyword '{keyword}' is also in {seen[keyword.lower()]}"
            seen[keyword.lower()] = topic.file
