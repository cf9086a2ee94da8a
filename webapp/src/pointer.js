// What mouse and finger do among the entries.

const longPress = 500; // ms
const slack = 10; // px that a finger may wander meanwhile

export class Pointer {
  #grid;
  #folder;
  #selection;
  #commands;
  #press = null; // of a finger: where, and the timer
  #isTouch = false;
  #wasLong = false; // the click that follows is none

  constructor(grid, folder, selection, commands) {
    this.#grid = grid;
    this.#folder = folder;
    this.#selection = selection;
    this.#commands = commands;
    const { body } = grid;
    body.addEventListener('click', event => this.#clicked(event));
    body.addEventListener('contextmenu', event => this.#menuWanted(event));
    body.addEventListener('pointerdown', event => this.#pressed(event));
    body.addEventListener('pointermove', event => this.#moved(event));
    for (const end of ['pointerup', 'pointercancel'])
      body.addEventListener(end, () => this.#release());
    body.addEventListener('focusin', ({ target }) => this.#focused(target));
  }

  #entryAt(target) {
    const element = target.closest('.entry');
    return element && this.#folder.find(element.dataset.path);
  }

  #focused(target) {
    const entry = this.#entryAt(target);
    if (!entry || entry.path === this.#selection.focused)
      return;
    this.#grid.elementOf(this.#selection.focused)?.setAttribute('tabindex', '-1');
    this.#selection.focused = entry.path;
    this.#grid.elementOf(entry.path).tabIndex = 0;
  }

  #pressed(event) {
    this.#isTouch = event.pointerType === 'touch';
    this.#wasLong = false;
    const entry = this.#isTouch && this.#entryAt(event.target);
    if (!entry || event.target.closest('.more, input'))
      return;
    // Else a finger that stays would begin to drag.
    event.target.closest('.entry').draggable = false;
    const timer = setTimeout(() => {
      this.#wasLong = true;
      navigator.vibrate?.(10);
      this.#selection.toggle(entry.path);
    }, longPress);
    this.#press = { timer, x: event.clientX, y: event.clientY };
  }

  #moved(event) {
    if (this.#press && Math.hypot(event.clientX - this.#press.x, event.clientY - this.#press.y) > slack)
      this.#release();
  }

  #release() {
    clearTimeout(this.#press?.timer);
    this.#press = null;
  }

  #clicked(event) {
    const entry = this.#entryAt(event.target);
    if (!entry || event.target.closest('input'))
      return;
    event.preventDefault();
    if (this.#wasLong)
      return;
    if (event.target.closest('.more'))
      this.#commands.menu(entry, event.target.closest('.more'));
    else if (event.shiftKey)
      this.#selection.reach(entry.path, this.#folder.shown.map(({ path }) => path));
    else if (event.ctrlKey || event.metaKey || event.target.closest('.check') || (this.#isTouch && this.#selection.size > 0))
      this.#selection.toggle(entry.path);
    else
      this.#commands.open(entry);
  }

  #menuWanted(event) {
    const entry = this.#entryAt(event.target);
    if (!entry || event.target.closest('input'))
      return;
    event.preventDefault();
    // A finger that stays chooses, see above.
    if (!this.#isTouch)
      this.#commands.menu(entry, null, event);
  }
}
