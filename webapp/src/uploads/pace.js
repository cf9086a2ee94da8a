// How fast the uploads are, over the last seconds.

const span = 5000; // ms

export class Pace {
  #samples = []; // { at, sent }

  // Bytes a second; 0 while nobody knows.
  note(sent, at = performance.now()) {
    const last = this.#samples.at(-1);
    if (last && sent < last.sent)
      this.#samples = [];
    this.#samples.push({ at, sent });
    while (at - this.#samples[0].at > span)
      this.#samples.shift();
    const first = this.#samples[0];
    return at - first.at > 500 ? (sent - first.sent) * 1000 / (at - first.at) : 0;
  }
}
