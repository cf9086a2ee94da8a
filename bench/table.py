"""The figures of a run: the best of all rounds in a table, every single one in a JSON."""

from dataclasses import dataclass

PEERS = ("nginx", "lighttpd", "apache")
OURS = ("quillon", "standard")  # those that are held against them
BEST = "best"  # of the peers


@dataclass(frozen=True)
class Metric:
    """One line of the table. `bound` is what Quillon is meant to reach: a figure in the line's own
    unit, or a multiple of a peer's when `beside` names one (or BEST)."""

    key: str
    title: str
    higher_is_better: bool
    bound: float | None = None
    beside: str | None = None

    def best(self, values):
        return max(values) if self.higher_is_better else min(values)

    def worst(self, values):
        return min(values) if self.higher_is_better else max(values)

    def wanted(self):
        if self.bound is None:
            return ""
        return f"{'>=' if self.higher_is_better else '<='} {self.bound:g}" + (
            f" x {self.beside}" if self.beside else "")

    def is_met(self, figure, ratio):
        """None when nothing is wanted or known. Ratios count as they are shown."""
        reached = ratio and round(ratio, 2) if self.beside else figure
        if self.bound is None or reached is None:
            return None
        return reached >= self.bound if self.higher_is_better else reached <= self.bound


def high(key, title, bound=None, beside=None):
    return Metric(key, title, True, bound, beside)


def low(key, title, bound=None, beside=None):
    return Metric(key, title, False, bound, beside)


class Results:
    """Collects figures, of one metric and server one or more a round."""

    def __init__(self, servers):
        self.servers = servers
        self.metrics = {}
        self.values = {}

    def declare(self, metrics):
        self.metrics.update((metric.key, metric) for metric in metrics)

    def note(self, key, server, value):
        self.values.setdefault((self.metrics[key].key, server), []).append(value)

    def best(self, key, server):
        """Other work on the machine only ever makes a figure worse, so the best one counts."""
        values = self.values.get((key, server))
        return self.metrics[key].best(values) if values else None

    def ratio(self, key, server):
        """The figure of one of ours as a multiple of the peer's that it is held against."""
        metric = self.metrics[key]
        peers = (metric.beside,) if metric.beside in PEERS else PEERS
        theirs = [best for best in (self.best(key, peer) for peer in peers) if best]
        ours = self.best(key, server)
        return ours / metric.best(theirs) if theirs and ours is not None else None

    def verdict(self, key, server):
        met = self.metrics[key].is_met(self.best(key, server), self.ratio(key, server))
        return "" if met is None else "met" if met else "MISSED"

    def ours(self):
        return [server for server in OURS if server in self.servers]

    def lines(self, metrics):
        yield row("", self.servers, ["ratio"] * len(self.ours()), "wanted", [])
        for metric in metrics:
            figures = [shown(self.best(metric.key, server)) for server in self.servers]
            ratios = [self.ratio(metric.key, server) for server in self.ours()]
            verdicts = [self.verdict(metric.key, server) for server in self.ours()]
            yield row(metric.title, figures,
                      ["-" if ratio is None else f"{ratio:.2f}" for ratio in ratios],
                      metric.wanted(), verdicts)

    def as_records(self):
        return [{"key": key, "title": metric.title, "wanted": metric.wanted(),
                 "ratios": {server: self.ratio(key, server) for server in self.ours()},
                 "verdicts": {server: self.verdict(key, server) for server in self.ours()},
                 "servers": {server: {"best": metric.best(values), "worst": metric.worst(values),
                                      "all": values}
                             for (of, server), values in self.values.items() if of == key}}
                for key, metric in self.metrics.items()]


def row(title, figures, ratios, wanted, verdicts):
    cells = "".join(f"{figure:>10}" for figure in figures)
    cells += "".join(f"{ratio:>8}" for ratio in ratios)
    return f"{title:<52}{cells}  {wanted:<15} {', '.join(filter(None, verdicts))}".rstrip()


def shown(figure):
    if figure is None:
        return "-"
    return f"{figure:,.0f}".replace(",", " ") if abs(figure) >= 1000 else f"{figure:.3g}"
