// What is chosen in a folder, and which entry has the keyboard: paths. Tells "change".

export class Selection extends EventTarget {
  #chosen = new Set();
  #anchor = null; // where a range begins
  focused = null;

  get size() {
    return this.#chosen.size;
  }

  has(path) {
    return this.#chosen.has(path);
  }

  toggle(path) {
    if (!this.#chosen.delete(path))
      this.#chosen.add(path);
    this.#anchor = path;
    this.#tell();
  }

  only(path) {
    this.#chosen = new Set([path]);
    this.#anchor = path;
    this.#tell();
  }

  // All from where the range began up to `path`, in the order of `paths`.
  reach(path, paths) {
    const from = Math.max(0, paths.indexOf(this.#anchor ?? this.focused));
    const to = paths.indexOf(path);
    this.#chosen = new Set(paths.slice(Math.min(from, to), Math.max(from, to) + 1));
    this.#anchor = paths[from];
    this.#tell();
  }

  all(paths) {
    this.#chosen = new Set(paths);
    this.#tell();
  }

  clear() {
    this.#anchor = null;
    if (this.#chosen.size === 0)
      return;
    this.#chosen.clear();
    this.#tell();
  }

  // Lets go of what is there no more.
  keep(paths) {
    const there = new Set(paths);
    this.all([...this.#chosen].filter(path => there.has(path)));
  }

  // Of these entries, in their order.
  of(entries) {
    return entries.filter(({ path }) => this.#chosen.has(path));
  }

  #tell() {
    this.dispatchEvent(new Event('change'));
  }
}
