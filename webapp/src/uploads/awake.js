// Keeps the screen on, and the page, while something is under way, where the browser allows it.

export class Awake {
  #lock = null;
  #isWanted = false;

  constructor() {
    document.addEventListener('visibilitychange', () => this.#apply());
    addEventListener('beforeunload', event => this.#isWanted && event.preventDefault());
  }

  want(isWanted) {
    if (isWanted === this.#isWanted)
      return;
    this.#isWanted = isWanted;
    this.#apply();
  }

  // It is lost whenever the page is hidden.
  async #apply() {
    try {
      if (!this.#isWanted)
        await this.#lock?.release();
      else if (document.visibilityState === 'visible')
        this.#lock = await navigator.wakeLock?.request('screen');
    } catch {
      // As where there is no such thing.
    }
  }
}
