"""What progress= takes, as a function of the percentage."""


def as_function(progress):
    if progress is True:
        return _own_bar()
    if hasattr(progress, "update") and hasattr(progress, "n"):  # a bar of tqdm
        return _through(progress)
    if callable(progress):
        return progress
    raise TypeError(f"progress= takes a function of the percentage, a tqdm bar or True, and not {progress!r}")


def _through(bar, close=False):
    if bar.total is None:
        bar.total = 100
    begin = bar.n  # the bar may be half-way through something larger
    span = bar.total - begin

    def show(percent):
        bar.update(begin + span * percent / 100 - bar.n)
        if close and percent >= 100:
            bar.close()

    return show


def _own_bar():
    try:
        from tqdm.auto import tqdm
    except ImportError:
        import sys

        def show(percent):
            print(f"\r{percent:3.0f} %", end="\n" if percent >= 100 else "", file=sys.stderr, flush=True)

        return show
    return _through(tqdm(total=100, bar_format="{l_bar}{bar}| {elapsed}<{remaining}"), close=True)
