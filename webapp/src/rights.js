// What the visitor may do in a folder: as the server says, or else as far as it allows methods there.

import { allowed, visitorAt } from './dav.js';

const free = '.quillon-free-name'; // nobody has it

export const noRights = { add: false, change: false, remove: false };

// `entry` is any of the folder's, to find out what may be done to them.
async function byMethods(folder, entry) {
  const [here, there] = await Promise.all([allowed(folder + free), entry && allowed(entry.path)]);
  const add = here.has('PUT');
  return {
    add,
    change: there ? there.has('PROPPATCH') : add,
    remove: there ? there.has('DELETE') : add,
  };
}

let isTold = true; // as far as is known

export async function rightsIn(folder, entry) {
  if (!isTold)
    return byMethods(folder, entry);
  try {
    const { add, change, delete: remove } = await visitorAt(folder);
    return { add, change, remove };
  } catch (error) {
    if (error.status !== 404)
      throw error;
    isTold = false;
    return byMethods(folder, entry);
  }
}
