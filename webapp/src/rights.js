// What the visitor may do in a folder, as far as the server allows methods there.

import { allowed } from './dav.js';

const free = '.quillon-free-name'; // nobody has it

export const noRights = { add: false, change: false, remove: false };

// `entry` is any of the folder's, to find out what may be done to them.
export async function rightsIn(folder, entry) {
  const [here, there] = await Promise.all([allowed(folder + free), entry && allowed(entry.path)]);
  const add = here.has('PUT');
  return {
    add,
    change: there ? there.has('PROPPATCH') : add,
    remove: there ? there.has('DELETE') : add,
  };
}
