// Another name for an entry, typed where it stands. A name that is refused stays there, with the
// reason, until another one is taken or the visitor wants none.

import { nameField } from './entry-view.js';
import { h } from './dom.js';
import { complain, reasonNote } from './notices.js';

const noteId = 'rename-note';

export class NameEdit {
  #field;
  #note = h('div', { class: 'rename-note', id: noteId });
  #rename;
  #ended;
  #settled; // what leaving the field asks nobody for: the name as it was, or was refused
  #state = 'typing'; // asking, over

  // `rename(name)` fails with what is to be told; `ended(path, hadFocus)` gets what it gave, or null.
  constructor(element, name, rename, ended) {
    this.#rename = rename;
    this.#ended = ended;
    this.#field = nameField(element, name);
    this.#settled = this.#field.value; // without breaks, which names may have
    this.#field.after(this.#note);
    this.#field.addEventListener('keydown', event => this.#pressed(event));
    this.#field.addEventListener('blur', event => this.#left(event));
  }

  #pressed(event) {
    event.stopPropagation();
    if (event.key === 'Enter')
      this.#save();
    else if (event.key === 'Escape')
      this.end();
  }

  #left({ relatedTarget }) {
    // A dialog gives the keyboard back, and so does another window.
    if (this.#state !== 'typing' || document.activeElement === this.#field || document.querySelector('dialog[open]')
      || this.#note.contains(relatedTarget))
      return;
    if (this.#field.value === this.#settled)
      this.end();
    else
      this.#save();
  }

  async #save() {
    const { value } = this.#field;
    const isRefused = this.#note.childElementCount > 0; // once more may do, then
    if (this.#state !== 'typing')
      return;
    if (!value.trim() || (value === this.#settled && !isRefused))
      return this.end();
    this.#state = 'asking';
    this.#field.readOnly = true;
    try {
      this.end(await this.#rename(value));
    } catch (error) {
      this.#refuse(error);
    }
  }

  #refuse(error) {
    if (this.#state === 'over' || !('status' in error))
      return complain(error);
    this.#state = 'typing';
    this.#field.readOnly = false;
    this.#settled = this.#field.value;
    this.#note.replaceChildren(reasonNote(error));
    this.#field.setAttribute('aria-invalid', 'true');
    this.#field.setAttribute('aria-describedby', noteId);
    this.#field.focus();
    this.#note.scrollIntoView({ block: 'nearest' });
    // Something else is in front of it by now.
    if (document.activeElement !== this.#field) {
      this.end();
      complain(error);
    }
  }

  end(path = null) {
    if (this.#state === 'over')
      return;
    this.#state = 'over';
    const hadFocus = document.activeElement === this.#field;
    this.#field.remove();
    this.#note.remove();
    this.#ended(path, hadFocus);
  }
}
