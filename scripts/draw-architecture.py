#!/usr/bin/env python3
"""Draws docs/architecture.svg from the #include lines and the linked targets of the sources.

    scripts/draw-architecture.py            checks the arrows and writes the picture
    scripts/draw-architecture.py --check    checks only

Ends with 1 and names the lines when something is used that its user must not know of.
"""
import re
import sys
from collections import Counter
from html import escape
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent

# From the roof down: the folders of each floor, from left to right.
FLOORS = [["app"], ["desktop", "platform"], ["classic", "standard"], ["server"], ["net"], ["files", "config"]]

# What the sources of a folder may include of other folders.
MAY_USE = {
    "config": [],
    "files": [],
    "net": ["files/FileDescriptor.h", "files/Pipe.h"],
    "server": ["config", "net", "files"],
    "classic": ["config", "net", "files", "server"],
    "standard": ["config", "net", "files", "server"],
    "platform": ["config"],
    "desktop/widgets": ["config"],
    "desktop": ["config", "net", "files", "server", "classic", "standard", "platform"],
    "app": ["config", "net", "files", "server", "classic", "standard", "platform", "desktop"],
}

# Rooms of a folder, from left to right; the ground carries the upper ones and knows none of them.
ROOMS = {
    "desktop": (["look", "window", "settings"], "widgets"),
    "classic": (["dav", "pages", "listing"], "http"),
    "standard": (["dav", "web"], "http"),
}

ROLES = {
    "app": "the programs, and what joins the floors",
    "desktop": "",
    "desktop/look": "fonts, colours",
    "desktop/window": "rows, main window",
    "desktop/settings": "profile editor",
    "desktop/widgets": "the kit of the other three",
    "platform": "what we ask of the system",
    "classic/dav": "WebDAV methods",
    "classic/pages": "pages for browsers",
    "classic/listing": "line listing",
    "classic/http": "heads, replies, form uploads",
    "standard/dav": "WebDAV 1, 2, 3",
    "standard/web": "uploads, archives",
    "standard/http": "messages, conditions",
    "server": "one served item: connections, sessions, rights, status",
    "net": "sockets, TLS, one poller, deadlines",
    "files": "the only way to the disk",
    "config": "profiles and directories",
}

INK = {"app": "#7b3f61", "desktop": "#2f6f8f", "platform": "#4f7f7f", "classic": "#8a5a12",
       "standard": "#4b5fae", "server": "#3c7a3c", "net": "#a2452f", "files": "#555a66", "config": "#555a66"}


# --- what the sources say ------------------------------------------------------------------------

def sources(folder):
    return sorted(p for p in (ROOT / folder).rglob("*") if p.suffix in (".cpp", ".h"))


def room_of(path):
    """The room of a path like "classic/dav/Put.h"; the folder itself where it has no rooms."""
    parts = path.split("/")
    return "/".join(parts[:2]) if parts[0] in ROOMS and len(parts) > 2 else parts[0]


def read_includes():
    """All includes of our own files: (file, line, included file)."""
    found = []
    for folder in (f for floor in FLOORS for f in floor):
        for path in sources(folder):
            for number, text in enumerate(path.read_text("utf-8").splitlines(), 1):
                match = re.match(r'\s*#\s*include\s+"([^"]+)"', text)
                if match and match[1].split("/")[0] in MAY_USE:
                    found.append((path.relative_to(ROOT).as_posix(), number, match[1]))
    return found


def read_links():
    """The targets that each target names: {target: (folder, [targets])}."""
    links = {}
    layer = re.compile(r"quillon_layer\(\s*([\w-]+)[^)]*?LINKS\s+([^)]*)\)")
    program = re.compile(r"target_link_libraries\(\s*([\w-]+)\s+([^)]*)\)")
    for path in sorted(ROOT.glob("*/CMakeLists.txt")):
        for match in [*layer.finditer(path.read_text("utf-8")), *program.finditer(path.read_text("utf-8"))]:
            links.setdefault(match[1], (path.parent.name, []))[1].extend(match[2].split())
    return {name: entry for name, entry in links.items() if entry[0] in MAY_USE}


# --- the rules -----------------------------------------------------------------------------------

def may_include(user, used):
    user_folder, used_folder = user.split("/")[0], used.split("/")[0]
    if user_folder == used_folder:
        room = room_of(user)
        _, ground = ROOMS.get(user_folder, ([], None))
        return room != f"{user_folder}/{ground}" or room_of(used) in (room, user_folder)
    allowed = MAY_USE.get(room_of(user), MAY_USE[user_folder])
    return used in allowed or used_folder in allowed


def may_link(folder, used_folder):
    return folder == used_folder or any(used_folder == rule.split("/")[0] for rule in MAY_USE[folder])


def check(includes, links):
    wrong = [f"{user}:{line}: {room_of(user)} must not include {used}"
             for user, line, used in includes if not may_include(user, used)]
    for target, (folder, named) in sorted(links.items()):
        wrong += [f"{folder}/CMakeLists.txt: {target} must not link {other}"
                  for other in named if other in links and not may_link(folder, links[other][0])]
    return wrong + circles(includes)


def circles(includes):
    """Headers that include each other, whichever way round."""
    uses = {}
    for user, _, used in includes:
        if user.endswith(".h"):
            uses.setdefault(user, set()).add(used)
    while True:
        ends = {used for all_used in uses.values() for used in all_used} - set(uses)
        left = {user: used - ends for user, used in uses.items() if used - ends}
        if left == uses:
            return [f"{user}: includes itself by way of {', '.join(sorted(used))}" for user, used in sorted(uses.items())]
        uses = left


# --- the picture ---------------------------------------------------------------------------------

WIDTH, LEFT, RIGHT = 1000, 40, 800  # of the house; the pipes run down beside it
PLAIN, ROOMY = 62, 160              # heights of a floor without and with rooms
TRACK = 12                          # between two pipes
GAP_ENDS = 18                       # from a box to the first pipe, for the heads of the arrows


class Picture:
    def __init__(self, arrows):
        self.arrows = arrows  # between folders and between the rooms of one folder
        self.floors = [[f for f in floor if sources(f)] for floor in FLOORS]
        self.floors = [floor for floor in self.floors if floor]
        self.level = {f: i for i, floor in enumerate(self.floors) for f in floor}
        self.boxes, self.parts, self.pipes = {}, [], []
        self.between = sorted((pair for pair in arrows if pair[0] in self.level and pair[1] in self.level),
                              key=lambda pair: (self.level[pair[0]], self.level[pair[1]], pair))
        self.lanes = self.lane_of_each_user()
        self.place_floors()

    def is_straight(self, pair):
        """Whether nothing stands between the two and the lower one lies below all of the upper."""
        user, used = pair
        return self.level[used] == self.level[user] + 1 and len(self.floors[self.level[used]]) == 1

    def lane_of_each_user(self):
        users = []
        for pair in self.between:
            if not self.is_straight(pair) and pair[0] not in users:
                users.append(pair[0])
        return {user: RIGHT + 36 + TRACK * 2 * (len(users) - i) for i, user in enumerate(users)}

    def tracks_of_gap(self, upper):
        """The pipes between a floor and the next: what leaves above, then what arrives below."""
        bent = [pair for pair in self.between if not self.is_straight(pair)]
        leaving = [("from", f) for f in self.floors[upper] if any(pair[0] == f for pair in bent)]
        arriving = [("to", pair) for pair in bent if self.level[pair[1]] == upper + 1]
        return leaving + arriving

    def place_floors(self):
        y = 92
        self.track = {}
        for index, floor in enumerate(self.floors):
            height = ROOMY if any(f in ROOMS for f in floor) else PLAIN
            self.place_floor(floor, y, height)
            y += height
            if index + 1 < len(self.floors):
                tracks = self.tracks_of_gap(index)
                for i, key in enumerate(tracks):
                    self.track[key, index] = y + GAP_ENDS - 4 + TRACK * i
                y += 2 * GAP_ENDS + TRACK * max(len(tracks) - 1, 0) + 4
        self.height = y + 36

    def place_floor(self, floor, y, height):
        shares = [len(ROOMS[f][0]) if f in ROOMS else 1 for f in floor]
        if len(floor) == 1:
            shares = [1]
        unit = (RIGHT - LEFT - 24 * (len(floor) - 1)) / sum(shares)
        x = LEFT
        for folder, share in zip(floor, shares):
            self.boxes[folder] = (x, y, unit * share, height)
            x += unit * share + 24
            if folder in ROOMS:
                self.place_rooms(folder)

    def place_rooms(self, folder):
        x, y, width, _ = self.boxes[folder]
        upper, ground = ROOMS[folder]
        upper = [room for room in upper if sources(f"{folder}/{room}")]
        each = (width - 32 - 28 * (len(upper) - 1)) / max(len(upper), 1)
        for i, room in enumerate(upper):
            self.boxes[f"{folder}/{room}"] = (x + 16 + i * (each + 28), y + 32, each, 46)
        if sources(f"{folder}/{ground}"):
            self.boxes[f"{folder}/{ground}"] = (x + 16, y + 102, width - 32, 46)

    # Drawing.

    def add(self, text):
        self.parts.append(text)

    def text(self, x, y, text, look):
        self.add(f'<text x="{x:.0f}" y="{y:.0f}" class="{look}">{escape(text)}</text>')

    def box(self, name):
        x, y, width, height = self.boxes[name]
        room = "/" in name
        ink = INK[name.split("/")[0]]
        self.add(f'<rect x="{x:.0f}" y="{y:.0f}" width="{width:.0f}" height="{height:.0f}" rx="{5 if room else 8}" '
                 f'fill="{"#ffffff" if room else ink}" fill-opacity="{1 if room else 0.10}" stroke="{ink}" '
                 f'stroke-opacity="{0.55 if room else 1}" stroke-width="{1 if room else 1.6}"/>')
        label, role = (name.split("/")[1] if room else name) + "/", ROLES[name] if name in ROLES else ""
        if name in ROOMS:
            self.text(x + 16, y + 22, label, "folder")
        elif room:
            self.text(x + 10, y + 19, label, "room")
            self.text(x + 10, y + 36, role, "role")
        else:
            self.text(x + 16, y + 26, label, "folder")
            self.text(x + 16, y + 46, role, "role")

    def pipe(self, points, folder, headed=True):
        """A line along points; a halo keeps pipes apart where they cross."""
        path = "M" + " L".join(f"{x:.1f},{y:.1f}" for x, y in points)
        head = f' marker-end="url(#{folder})"' if headed else ""
        self.pipes.append(f'<path d="{path}" class="halo"/>'
                          f'<path d="{path}" class="pipe" stroke="{INK[folder]}"{head}/>')

    def landing(self, pair):
        """Where an arrow meets the top of the used box: one place for each of its users."""
        users = [user for user, used in self.between if used == pair[1]]
        x, y, width, _ = self.boxes[pair[1]]
        return x + width * (users.index(pair[0]) + 1) / (len(users) + 1), y

    def draw_between(self):
        for user in self.lanes:
            self.draw_lane(user, [pair for pair in self.between if pair[0] == user and not self.is_straight(pair)])
        for pair in filter(self.is_straight, self.between):
            x, y, width, height = self.boxes[pair[0]]
            to_x, to_y = self.landing(pair)
            from_x = min(max(to_x, x + 30), x + width - 30)
            self.pipe([(from_x, y + height), (to_x, to_y)] if from_x == to_x else
                      [(from_x, y + height), (from_x, to_y - 10), (to_x, to_y - 10), (to_x, to_y)], pair[0])

    def draw_lane(self, user, pairs):
        x, y, width, height = self.boxes[user]
        lane, level = self.lanes[user], self.level[user]
        leave = self.track[("from", user), level]
        for pair in pairs:
            to_x, to_y = self.landing(pair)
            arrive = self.track[("to", pair), self.level[pair[1]] - 1]
            self.pipe([(x + width - 24, y + height), (x + width - 24, leave), (lane, leave),
                       (lane, arrive), (to_x, arrive), (to_x, to_y)], user)

    def draw_inside(self):
        for user, used in sorted(self.arrows):
            folder = user.split("/")[0]
            if user not in self.boxes or used not in self.boxes or "/" not in user or "/" not in used:
                continue
            x, y, width, height = self.boxes[user]
            to_x, to_y, to_width, _ = self.boxes[used]
            if to_y > y:
                self.pipe([(x + width / 2, y + height), (x + width / 2, to_y)], folder)
            else:
                self.draw_sideways(folder, (x, width), (to_x, to_width), y, (used, user) in self.arrows)

    def draw_sideways(self, folder, from_span, to_span, y, both_ways):
        right = to_span[0] > from_span[0]
        start = from_span[0] + from_span[1] if right else from_span[0]
        end = to_span[0] if right else to_span[0] + to_span[1]
        level = y + 23 + (0 if not both_ways else 6 if right else -6)
        self.pipe([(start, level), (end, level)], folder)

    def svg(self):
        for name in self.boxes:
            self.box(name)
        self.draw_inside()
        self.draw_between()
        markers = "".join(
            f'<marker id="{folder}" viewBox="0 0 8 8" refX="7.5" refY="4" markerWidth="7" markerHeight="7" '
            f'orient="auto"><path d="M0,0.6 L8,4 L0,7.4 Z" fill="{INK[folder]}"/></marker>' for folder in INK)
        return "\n".join([
            f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {self.height:.0f}" '
            f'width="{WIDTH}" height="{self.height:.0f}" role="img" aria-label="The floors of Quillon">',
            "<style>text{font-family:'DejaVu Sans',Verdana,sans-serif;fill:#23262d}"
            ".title{font-size:20px;font-weight:bold}.folder{font-size:15px;font-weight:bold}"
            ".room{font-size:13px;font-weight:bold}.role{font-size:11.5px;fill:#565b66}"
            ".pipe,.halo{fill:none;stroke-linejoin:round}.pipe{stroke-width:1.6}"
            ".halo{stroke:#fbfaf6;stroke-width:4.5;stroke-opacity:.85}</style>",
            f"<defs>{markers}</defs>",
            f'<rect width="{WIDTH}" height="{self.height:.0f}" rx="10" fill="#fbfaf6"/>',
            f'<text x="{LEFT}" y="46" class="title">The floors of Quillon</text>',
            f'<text x="{LEFT}" y="68" class="role">An arrow leads from a folder to what its sources include; '
            "it has the colour of the folder that it starts from.</text>",
            *self.parts, *self.pipes, "</svg>", ""])


def arrows_of(includes):
    """How often each folder includes each other one, and each room each other room of its folder."""
    count = Counter()
    for user, _, used in includes:
        folder, used_folder = user.split("/")[0], used.split("/")[0]
        pair = (folder, used_folder) if folder != used_folder else (room_of(user), room_of(used))
        if pair[0] != pair[1]:
            count[pair] += 1
    return count


def main(arguments):
    if arguments not in ([], ["--check"]):
        sys.exit(__doc__)
    includes = read_includes()
    wrong = check(includes, read_links())
    if wrong:
        print("\n".join(wrong), file=sys.stderr)
        return 1
    if not arguments:
        (ROOT / "docs/architecture.svg").write_text(Picture(arrows_of(includes)).svg(), "utf-8")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
