// Files that the visitor chose, dropped or pasted: { files: [{ file, folders }], folders: [[...]], unread },
// where `folders` are the names of the folders around it. Empty folders are among `folders`; `unread`,
// if there, are the names of what the browser could not read.

const inFolders = file => (file.webkitRelativePath || file.name).split('/').slice(0, -1);

export function fromList(list) {
  const files = [...list].map(file => ({ file, folders: inFolders(file) }));
  return { files, folders: files.map(({ folders }) => folders).filter(folders => folders.length > 0) };
}

// The browser hands out the entries of a folder in pieces.
async function allOf(reader) {
  const found = [];
  for (;;) {
    const piece = await new Promise((resolve, reject) => reader.readEntries(resolve, reject));
    if (piece.length === 0)
      return found;
    found.push(...piece);
  }
}

async function walk(entry, around, found) {
  try {
    await read(entry, around, found);
  } catch (error) {
    if (!(error instanceof DOMException))
      throw error;
    found.unread.push(entry.name);
  }
}

async function read(entry, around, found) {
  if (entry.isFile) {
    const file = await new Promise((resolve, reject) => entry.file(resolve, reject));
    found.files.push({ file, folders: around });
    return;
  }
  const folders = [...around, entry.name];
  found.folders.push(folders);
  for (const each of await allOf(entry.createReader()))
    await walk(each, folders, found);
}

// Must be called before the event is over: what it carries is gone then.
export async function fromTransfer(transfer) {
  const items = [...transfer.items].filter(({ kind }) => kind === 'file');
  const entries = items.map(item => item.webkitGetAsEntry?.()).filter(Boolean);
  if (entries.length === 0)
    return fromList(transfer.files);
  const found = { files: [], folders: [], unread: [] };
  for (const entry of entries)
    await walk(entry, [], found);
  return found;
}

// A picture without a name gets the time for one.
export function fromClipboard(clipboard, now = new Date()) {
  const files = [...clipboard.files].map(file => {
    if (file.name !== 'image.png')
      return file;
    const time = now.toISOString().slice(0, 19).replace('T', ' ').replaceAll(':', '.');
    return new File([file], `${time}.png`, { type: file.type, lastModified: now.getTime() });
  });
  return fromList(files);
}

export const isFiles = transfer => [...transfer?.types ?? []].includes('Files');
