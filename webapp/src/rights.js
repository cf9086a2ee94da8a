// What the visitor may do in a folder, as the server says.

import { visitorAt } from './dav.js';

export const noRights = { see: false, read: false, add: false, change: false, remove: false, move: false, copy: false };

// What is moved is added under its new name, and what is copied is read.
export async function rightsIn(folder) {
  const { see, read, add, change, delete: remove, share } = await visitorAt(folder);
  return { see, read, add, change, remove, move: add && remove, copy: add && read, share };
}
