// What the visitor may do in a folder, as the server says.

import { visitorAt } from './dav.js';

export const noRights = { add: false, change: false, remove: false };

export async function rightsIn(folder) {
  const { add, change, delete: remove, share } = await visitorAt(folder);
  return { add, change, remove, share };
}
