"""One simulated learner: signs up and in, writes cards through the dictionary writer's event
streams, saves note lines one at a time as the app does, and reviews cards. It keeps a ledger
of every write the server acknowledged, and of the writes whose answer never came (a process
killed under them), which may or may not have happened."""

import http.client
import json
import random
import threading
import time
from urllib.parse import urlparse

WORDS = ["Hund", "Katze", "Haus", "Baum", "Garten", "Wetter", "Vogel", "Tisch", "Stuhl",
         "Fenster", "Apfel", "Brot", "Milch", "Wasser", "Buch", "Schule", "Stadt", "Auto",
         "Blume", "Wald", "Berg", "Fluss", "Meer", "Sonne", "Mond", "Stern", "Himmel", "Kind",
         "Frau", "Mann", "Freund", "Arbeit", "Zeit", "Nacht", "Woche", "Jahr", "Geld", "Tür",
         "Zimmer", "Küche"]
LINES_PER_NOTE = 8


class Stats:
    """Counters shared by every learner."""

    def __init__(self):
        self.lock = threading.Lock()
        self.counts = {}
        self.errors = {}
        self.problems = []
        # The field order of each word's stream, as the first complete stream of it gave it.
        self.reference = {}

    def count(self, key, n=1):
        with self.lock:
            self.counts[key] = self.counts.get(key, 0) + n

    def error(self, kind):
        with self.lock:
            self.errors[kind] = self.errors.get(kind, 0) + 1

    def problem(self, text):
        with self.lock:
            self.counts["problems"] = self.counts.get("problems", 0) + 1
            if len(self.problems) < 50:
                self.problems.append(text)

    def reference_for(self, word, fields):
        with self.lock:
            return self.reference.setdefault(word, fields)


class Unanswered(Exception):
    """The request may or may not have reached the server: no answer came."""


class Client:
    def __init__(self, base, stats, timeout=120):
        u = urlparse(base)
        self.host, self.port = u.hostname, u.port
        self.stats = stats
        self.timeout = timeout
        self.cookie = None
        self.conn = None

    def _connection(self):
        if self.conn is None:
            self.conn = http.client.HTTPConnection(self.host, self.port, timeout=self.timeout)
        return self.conn

    def _drop(self):
        if self.conn is not None:
            self.conn.close()
            self.conn = None

    def _headers(self, body):
        h = {"Accept": "application/json"}
        if body is not None:
            h["Content-Type"] = "application/json"
        if self.cookie:
            h["Cookie"] = "orvel_session=" + self.cookie
        return h

    def _keep_cookie(self, resp):
        for name, value in resp.getheaders():
            if name.lower() == "set-cookie" and value.startswith("orvel_session="):
                self.cookie = value.split(";", 1)[0][len("orvel_session="):]

    def _open(self, method, path, body, kind, extra_headers=None):
        data = None if body is None else json.dumps(body).encode()
        headers = self._headers(body)
        headers.update(extra_headers or {})
        self.stats.count("requests")
        self.stats.count("requests." + kind)
        try:
            conn = self._connection()
            conn.request(method, path, body=data, headers=headers)
            resp = conn.getresponse()
        except (OSError, http.client.HTTPException) as e:
            self._drop()
            self.stats.error("%s: %s" % (kind, type(e).__name__))
            raise Unanswered(str(e))
        self._keep_cookie(resp)
        if resp.status in (502, 504):
            # nginx answered for a process that went away with the request: it may or may
            # not have been carried out, as if no answer had come.
            try:
                resp.read()
            except (OSError, http.client.HTTPException):
                self._drop()
            self.stats.error("%s: HTTP %d" % (kind, resp.status))
            raise Unanswered("HTTP %d" % resp.status)
        return resp

    def call(self, method, path, body=None, kind="call"):
        """(status, json) of a whole reply; Unanswered when no reply came."""
        resp = self._open(method, path, body, kind)
        try:
            raw = resp.read()
        except (OSError, http.client.HTTPException) as e:
            self._drop()
            self.stats.error("%s: %s" % (kind, type(e).__name__))
            raise Unanswered(str(e))
        if resp.status >= 400:
            self.stats.error("%s: HTTP %d" % (kind, resp.status))
        if resp.getheader("Connection", "").lower() == "close":
            self._drop()
        try:
            return resp.status, json.loads(raw) if raw else None
        except ValueError:
            return resp.status, None

    def stream(self, path, body, kind):
        """(status, events, complete): the events in arrival order, and whether the reply
        ended properly (a cut connection leaves it False)."""
        resp = self._open("POST", path, body, kind, {"Accept": "text/event-stream"})
        events = []
        if resp.status != 200:
            try:
                resp.read()
            except (OSError, http.client.HTTPException):
                self._drop()
            self.stats.error("%s: HTTP %d" % (kind, resp.status))
            return resp.status, events, True
        try:
            while True:
                line = resp.readline()
                if not line:
                    break
                if line.startswith(b"data: "):
                    events.append(json.loads(line[6:]))
            complete = True
        except (OSError, http.client.HTTPException, ValueError) as e:
            self._drop()
            self.stats.error("%s: cut (%s)" % (kind, type(e).__name__))
            complete = False
        return 200, events, complete


class Learner(threading.Thread):
    def __init__(self, index, base, stats, deadline, think, start_delay, seed):
        super().__init__(daemon=True)
        self.index = index
        self.email = "learner%d@soak.example.org" % index
        self.api = Client(base, stats)
        self.stats = stats
        self.deadline = deadline
        self.think = think
        self.start_delay = start_delay
        self.random = random.Random(seed)
        self.words = list(WORDS)
        self.random.shuffle(self.words)
        self.deck = None
        self.decks = []
        # The ledger: what the server said it stored.
        self.cards = {}          # card id -> (deck id, term)
        self.reviews = {}        # card id -> [acknowledged, unanswered]
        self.notes = {}          # note id -> list of acceptable line lists (one when certain)
        self.note = None         # (id, server lines) of the note being written
        self.ready = False

    # Every call retries until it is answered or time is up, as the app would.
    def _until_answered(self, fn):
        while time.monotonic() < self.deadline:
            try:
                return fn()
            except Unanswered:
                time.sleep(0.5)
        return None

    def _new_deck(self):
        """A deck to write cards into; every word list is written once per deck."""
        deck = {"name": "Deutsch %d" % (len(self.decks) + 1), "description": "",
                "language": "de", "native_language": "en"}
        r = self._until_answered(lambda: self.api.call("POST", "/api/decks", deck, "deck"))
        if r is None or r[0] != 201:
            return False
        self.deck = r[1]["id"]
        self.decks.append(self.deck)
        self.words = list(WORDS)
        self.random.shuffle(self.words)
        return True

    def _setup(self):
        api = self.api
        signup = {"email": self.email, "password": "soak-password", "display_name": "L"}
        r = self._until_answered(lambda: api.call("POST", "/api/auth/signup", signup, "signup"))
        if r is None or r[0] not in (201, 409):
            return False
        login = {"email": self.email, "password": "soak-password"}
        r = self._until_answered(lambda: api.call("POST", "/api/auth/login", login, "login"))
        if r is None or r[0] != 200:
            return False
        return self._new_deck()

    def run(self):
        time.sleep(self.start_delay)
        if not self._setup():
            self.stats.count("learners.not_started")
            return
        self.ready = True
        self.stats.count("learners.started")
        while time.monotonic() < self.deadline:
            r = self.random.random()
            if not self.words and not self._new_deck():
                continue
            if len(self.cards) < 2 or r < 0.2:
                self.write_card()
            elif r < 0.25:
                self.write_batch()
            elif r < 0.75:
                self.save_line()
            else:
                self.review()
            time.sleep(self.random.uniform(0, 2 * self.think))

    # Cards ------------------------------------------------------------------------------

    def write_card(self):
        word = self.words.pop()
        try:
            status, events, complete = self.api.stream(
                "/api/decks/%d/cards" % self.deck, {"input": word}, "card")
        except Unanswered:
            self.stats.count("unanswered.cards")
            return
        self.stats.count("streams")
        self.stats.count("stream_events", len(events))
        if status != 200:
            return
        types = [e.get("type") for e in events]
        if not complete:
            self.stats.count("unanswered.cards")
            return
        if not types or types[-1] not in ("card", "error"):
            self.stats.problem("stream for %s ended without its last event: %s" % (word, types))
            self.stats.count("streams.lost_or_reordered")
            return
        if any(t != "progress" for t in types[:-1]):
            self.stats.problem("stream for %s out of order: %s" % (word, types))
            self.stats.count("streams.lost_or_reordered")
            return
        fields = [e.get("field") for e in events[:-1]] + [types[-1]]
        if self.stats.reference_for(word, fields) != fields:
            self.stats.problem("stream for %s differs: %s vs %s"
                               % (word, fields, self.stats.reference[word]))
            self.stats.count("streams.lost_or_reordered")
        if types[-1] == "card":
            card = events[-1]["card"]
            self.cards[card["id"]] = (self.deck, card["term"])
            self.stats.count("ack.cards")
        else:
            self.stats.count("cards.refused_by_writer")

    def write_batch(self):
        terms = [self.words.pop() for _ in range(min(3, len(self.words)))]
        body = {"words": [{"term": t, "source": ""} for t in terms]}
        try:
            status, events, complete = self.api.stream(
                "/api/decks/%d/cards/batch" % self.deck, body, "batch")
        except Unanswered:
            self.stats.count("unanswered.cards")
            return
        self.stats.count("streams")
        self.stats.count("stream_events", len(events))
        if status == 200 and not complete:
            self.stats.count("unanswered.cards")
        if status != 200 or not complete:
            return
        # start, then for each word in order: word, then card | skipped | failed; then done.
        ok = len(events) == 2 + 2 * len(terms) and events[0].get("type") == "start" \
            and events[-1].get("type") == "done"
        for i in range(len(terms)):
            if not ok:
                break
            w, outcome = events[1 + 2 * i], events[2 + 2 * i]
            ok = w.get("type") == "word" and w.get("index") == i and \
                outcome.get("type") in ("card", "skipped", "failed") and outcome.get("index") == i
            if ok and outcome["type"] == "card":
                self.cards[outcome["card"]["id"]] = (self.deck, outcome["card"]["term"])
                self.stats.count("ack.cards")
        if not ok:
            self.stats.problem("batch %s out of order: %s" % (terms, [e.get("type") for e in events]))
            self.stats.count("streams.lost_or_reordered")

    def review(self):
        if not self.cards:
            return
        card = self.random.choice(list(self.cards))
        tally = self.reviews.setdefault(card, [0, 0])
        try:
            status, _ = self.api.call("POST", "/api/cards/%d/review" % card,
                                      {"known": self.random.random() < 0.7}, "review")
        except Unanswered:
            tally[1] += 1
            self.stats.count("unanswered.reviews")
            return
        if status == 200:
            tally[0] += 1
            self.stats.count("ack.reviews")

    # Notes ------------------------------------------------------------------------------

    def save_line(self):
        if self.note is None or len(self.note[1]) >= LINES_PER_NOTE:
            try:
                status, note = self.api.call("POST", "/api/decks/%d/notes" % self.deck,
                                             {"title": "Notiz", "text": ""}, "note")
            except Unanswered:
                return  # a note that may exist but is empty: nothing to check
            if status != 201:
                return
            self.notes[note["id"]] = [[]]
            self.note = (note["id"], note["lines"])
            self.stats.count("ack.notes")
        note_id, lines = self.note
        before = [l["text"] for l in lines]
        text = "Zeile %d von %s" % (len(lines) + 1, self.email)
        drafts = [{"id": l["id"], "text": l["text"], "source": l["source"], "kind": l["kind"],
                   "annotations": l["annotations"]} for l in lines]
        drafts.append({"text": text, "source": "", "kind": "", "annotations": []})
        try:
            status, saved = self.api.call("PATCH", "/api/notes/%d" % note_id,
                                          {"title": "Notiz", "lines": drafts}, "save")
        except Unanswered:
            # Either the lines before or the lines after: ask what the server has.
            self.stats.count("unanswered.saves")
            self.notes[note_id] = [before, before + [text]]
            self._reread(note_id)
            return
        if status != 200:
            return
        got = [l["text"] for l in saved["lines"]]
        if got != before + [text]:
            self.stats.problem("note %d saved as %s, sent %s" % (note_id, got, before + [text]))
            self.stats.count("ledger.mismatches")
        self.notes[note_id] = [got]
        self.note = (note_id, saved["lines"])
        self.stats.count("ack.lines")

    def _reread(self, note_id):
        r = self._until_answered(lambda: self.api.call("GET", "/api/notes/%d" % note_id,
                                                       None, "reread"))
        if r is None or r[0] != 200:
            self.note = None  # left with both possibilities; checked at the end
            return
        got = [l["text"] for l in r[1]["lines"]]
        if got not in self.notes[note_id]:
            self.stats.problem("note %d holds %s after a cut save" % (note_id, got))
            self.stats.count("ledger.mismatches")
        self.notes[note_id] = [got]
        self.note = (note_id, r[1]["lines"])

    # Checking the ledger ------------------------------------------------------------------

    def check(self):
        """Reads back everything the ledger holds; returns (checked, mismatches)."""
        if not self.ready:
            return 0, 0
        checked = mismatches = 0
        api = self.api

        def fetch(path):
            for _ in range(5):
                try:
                    return api.call("GET", path, None, "check")
                except Unanswered:
                    time.sleep(0.5)
            return None, None

        stored = {}
        for deck_id in self.decks:
            status, deck = fetch("/api/decks/%d" % deck_id)
            if status == 200:
                stored.update({c["id"]: c for c in deck.get("cards", [])})
        for card_id, (_, term) in self.cards.items():
            checked += 1
            c = stored.get(card_id)
            if c is None or c["term"] != term:
                mismatches += 1
                self.stats.problem("%s: card %d (%s) missing" % (self.email, card_id, term))
                continue
            acked, unanswered = self.reviews.get(card_id, [0, 0])
            if not acked <= c["seen"] <= acked + unanswered:
                mismatches += 1
                self.stats.problem("%s: card %d seen %d times, %d reviews acknowledged (+%d)"
                                   % (self.email, card_id, c["seen"], acked, unanswered))
        for note_id, acceptable in self.notes.items():
            checked += 1
            status, note = fetch("/api/notes/%d" % note_id)
            got = [l["text"] for l in note["lines"]] if status == 200 else None
            if got not in acceptable:
                mismatches += 1
                self.stats.problem("%s: note %d holds %s, ledger %s"
                                   % (self.email, note_id, got, acceptable))
        return checked, mismatches
