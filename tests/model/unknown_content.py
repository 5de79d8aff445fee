# Item files as another program may write them, full of what this version does not know, and what must be left of them.
# Every item and every unknown entry or value has a number of its own.
import datetime, plistlib, random

KNOWN_KEYS = {'WebBookmarkType', 'WebBookmarkUUID', 'Title', 'SearchString', 'Children', 'URIDictionary', 'URLString',
              'Note', 'AddressBookID'}


class Maker:
    def __init__(self, seed):
        self.random = random.Random(seed)
        self.count = 0

    def number(self):
        self.count += 1
        return self.count

    def odd(self, depth=0):
        """A value of any type, unlike every other."""
        n = self.number()
        kind = self.random.randrange(10 if depth < 6 else 7)
        simple = ['odd %d' % n, n, n + 0.5, b'data %d' % n, 2 ** 63 + n, -n,
                  datetime.datetime(2000, 1, 1) + datetime.timedelta(seconds=n)]
        if kind < 7:
            return simple[kind]
        if kind == 7:
            return [self.odd(depth + 1) for _ in range(self.random.randrange(4))] + [n]
        return {'odd %d' % self.number(): self.odd(depth + 1) for _ in range(self.random.randrange(4))} | {'n': n}

    def perhaps(self, share):
        return self.random.random() < share

    def with_unknown_keys(self, entry):
        for _ in range(self.random.randrange(3) if self.perhaps(0.6) else 0):
            entry['Unknown %d' % self.number()] = self.odd()
        return entry

    def spoilt(self, entry, keys):
        for key in keys:
            if self.perhaps(0.08):
                entry[key] = self.odd(9)
                if isinstance(entry[key], str):
                    entry[key] = self.number()
        return entry

    def uri(self, address):
        uri = {'title': 'Item %d' % self.number(), '': address}
        if self.perhaps(0.2):
            uri['Icon'] = self.odd()
        return uri

    def leaf(self):
        address = self.random.choice(['http://a.example/%d', 'file:///tmp/%d', 'mailto:n%d']) % self.number()
        entry = {'WebBookmarkType': 'WebBookmarkTypeLeaf', 'URLString': address, 'URIDictionary': self.uri(address)}
        return self.spoilt(entry, ['URLString'])

    def note(self):
        entry = {'WebBookmarkType': 'WebBookmarkTypeNote', 'Note': 'Text %d' % self.number(),
                 'URIDictionary': self.uri('')}
        return self.spoilt(entry, ['Note'])

    def contact(self):
        kind = self.random.choice(['ABPerson', 'ABGroup'])
        return self.spoilt({'WebBookmarkType': kind, 'AddressBookID': 'card %d' % self.number()}, ['Title', 'Children'])

    def folder(self, depth):
        entry = {'WebBookmarkType': self.random.choice(['WebBookmarkTypeList'] * 3 + ['BookmarksBar', 'BookmarksMenu']),
                 'Title': 'Folder %d' % self.number(), 'SearchString': 'search %d' % self.number(),
                 'Children': self.entries(depth + 1)}
        if self.perhaps(0.1):
            del entry['Children']
        return self.spoilt(entry, ['SearchString'] + (['Children'] if self.perhaps(0.3) else []))

    def unknown_entry(self, depth):
        """One that makes no item."""
        kind = self.random.randrange(6)
        if kind == 0:
            return self.odd()
        if kind == 1:
            return self.with_unknown_keys({'WebBookmarkType': 'Drawing', 'Title': 'Drawing %d' % self.number()})
        if kind == 2:
            return {'Title': 'Untyped %d' % self.number()}
        if kind == 3:
            return self.leaf() | {'URIDictionary': {'title': '', '': 'untitled %d' % self.number()}}
        if kind == 4:
            return self.folder(depth + 1) | {'Title': '', 'n': self.number()}
        return {'WebBookmarkType': self.number(), 'Children': self.entries(depth + 1)}

    def known_entry(self, depth):
        makers = [self.leaf, self.leaf, self.note, self.note, self.contact]
        if depth < 5:
            makers += [lambda: self.folder(depth)] * 2
        entry = self.random.choice(makers)()
        entry['WebBookmarkUUID'] = 'ID %d' % self.number()
        return self.with_unknown_keys(entry)

    def entries(self, depth):
        entries = []
        for _ in range(self.random.randrange(9) + (8 if depth == 0 else 0)):
            if self.perhaps(0.35):
                entries.append(self.unknown_entry(depth))
            else:
                entries.append(self.known_entry(depth))
        return entries

    def root(self):
        root = self.with_unknown_keys({'WebBookmarkType': 'WebBookmarkTypeList', 'WebBookmarkUUID': 'ROOT', 'Title': 'R',
                                       'Version': self.odd(), 'SearchString': 'R'})
        root['Children'] = [self.folder(0) | {'WebBookmarkUUID': 'ID %d' % self.number()}
                            for _ in range(3)] + self.entries(0)
        root['Children'] += [self.known_entry(9) for _ in range(20)]
        return root


def made(seed):
    return Maker(seed).root()


def make(count):
    for seed in range(count):
        with open('%d.plist' % seed, 'wb') as file:
            plistlib.dump(made(seed), file)


def check(count, check):
    """`check` takes the file that was made and the one that was written over it."""
    for seed in range(count):
        try:
            check(made(seed), load('%d.plist' % seed))
        except (AssertionError, KeyError) as error:
            raise AssertionError(seed) from error


def load(path):
    with open(path, 'rb') as file:
        return plistlib.load(file)


def check_same(found, written, where):
    assert type(found) is type(written) and found == written, (where, found, written)


def is_item(entry):
    if not isinstance(entry, dict):
        return False
    kind = entry.get('WebBookmarkType')
    if kind in ('WebBookmarkTypeList', 'BookmarksBar', 'BookmarksMenu'):
        title = entry.get('Title')
    elif kind in ('WebBookmarkTypeLeaf', 'WebBookmarkTypeNote'):
        title = entry.get('URIDictionary', {}).get('title')
    else:
        return kind in ('ABPerson', 'ABGroup')
    return isinstance(title, str) and title != ''


def is_folder(entry):
    return is_item(entry) and (entry['WebBookmarkType'] in ('WebBookmarkTypeList', 'BookmarksBar', 'BookmarksMenu'))


def check_item(found, written, where, may_be_retitled=False):
    """Everything but the children of a folder."""
    assert set(written) - set(found) <= KNOWN_KEYS, (where, 'keys of nobody')
    for key, value in found.items():
        here = where + '/' + key
        if key == 'Children' and is_folder(found) and isinstance(value, list):
            continue
        if key == 'Children' and is_folder(found) and may_be_retitled and isinstance(written[key], list):
            assert written[key] != [], here  # the user has put something there
            continue
        if key == 'Title' and is_folder(found) and may_be_retitled:
            assert written[key].endswith(value), (here, written[key])
        elif key == 'URIDictionary':
            assert set(written[key]) == set(value), here
            for inner in value:
                if inner == 'title' and may_be_retitled:
                    assert written[key][inner].endswith(value[inner]), here
                elif inner == '' and not isinstance(found.get('URLString', value[inner]), str):
                    check_same(value[inner], written[key][inner], here)
                else:
                    check_same(value[inner], written[key][inner], here)
        else:
            check_same(value, written[key], here)


def check_all(found, written, where=''):
    """Nothing was changed: all is there, in its place."""
    check_item(found, written, where)
    if not isinstance(found.get('Children', []), list):
        return
    entries = found.get('Children', [])
    assert len(entries) == len(written['Children']), (where, len(entries), len(written['Children']))
    for i, (entry, left) in enumerate(zip(entries, written['Children'])):
        here = '%s/%d' % (where, i)
        if is_folder(entry):
            check_all(entry, left, here)
        elif is_item(entry):
            check_item(entry, left, here)
        else:
            check_same(entry, left, here)


def folders_and_items(root):
    """By identifier, of what makes items."""
    items = {}
    pending = [root]
    while pending:
        entry = pending.pop()
        assert entry['WebBookmarkUUID'] not in items, entry['WebBookmarkUUID']
        items[entry['WebBookmarkUUID']] = entry
        if is_folder(entry) and isinstance(entry.get('Children'), list):
            pending += [child for child in entry['Children'] if is_item(child)]
    return items


def unknown_of(folder):
    return [entry for entry in folder.get('Children', []) if not is_item(entry)]


def neighbours_of(folder):
    """Of each unknown entry the identifier of the item before it; none in front of all."""
    neighbours = []
    last = None
    for entry in folder['Children']:
        if is_item(entry):
            last = entry['WebBookmarkUUID']
        else:
            neighbours.append(last)
    return neighbours


def check_after_changes(found, written):
    """Items were added, moved, deleted, sorted, given other titles."""
    before = folders_and_items(found)
    after = folders_and_items(written)
    assert 'ROOT' in after
    for uuid, item in after.items():
        if uuid not in before:
            assert item['URIDictionary']['title'].endswith('New'), item
            continue
        check_item(before[uuid], item, uuid, may_be_retitled=True)
        if not is_folder(item) or not isinstance(before[uuid].get('Children', []), list):
            continue
        check_entries(before[uuid], item)


def text_of(entry):
    """The same for the same, whatever the order of its keys."""
    return plistlib.dumps(entry, sort_keys=True)


def check_entries(before, after):
    ours, theirs = unknown_of(after), unknown_of(before)
    assert len(ours) == len(theirs), (len(ours), len(theirs))
    assert sorted(map(text_of, theirs)) == sorted(map(text_of, ours))
    siblings = [entry['WebBookmarkUUID'] for entry in after['Children'] if is_item(entry)]
    known = dict(zip(map(text_of, ours), neighbours_of(after)))
    for entry, neighbour in zip(theirs, neighbours_of(before) if theirs else []):
        if neighbour in siblings or neighbour is None:
            assert known[text_of(entry)] == neighbour, (entry, neighbour, known[text_of(entry)])
    # Those behind the same item are in the order in which they were.
    for neighbour in set(known.values()):
        together = [text_of(entry) for entry in ours if known[text_of(entry)] == neighbour]
        assert together == [text_of(entry) for entry in theirs if text_of(entry) in together], together
