// What a file is, by the ending of its name, and how it can be looked at.

const endings = {
  picture: 'jpg jpeg png gif webp avif svg bmp ico heic heif tif tiff',
  video: 'mp4 m4v webm mov mkv ogv avi mpg mpeg m2ts mts flv wmv asf',
  sound: 'mp3 m4a ogg oga opus flac wav aac',
  pdf: 'pdf',
  text: 'txt md log json xml csv yml yaml ini conf cfg js mjs css html htm c h cc cpp hpp py rb rs go java ts sh bat sql tex srt',
  archive: 'zip tar gz tgz bz2 xz 7z rar zst',
  sheet: 'ods xls xlsx odp ppt pptx',
  document: 'odt doc docx rtf epub',
};

const kinds = new Map(Object.entries(endings).flatMap(
  ([kind, names]) => names.split(' ').map(name => [name, kind])));

export const endingOf = name => name.slice(name.lastIndexOf('.') + 1).toLowerCase();

export const kindOf = name => (name.includes('.') && kinds.get(endingOf(name))) || 'file';

// Pictures that no browser, or hardly one, shows by itself.
const foreign = new Set(['heic', 'heif', 'tif', 'tiff']);
export const isForeignPicture = name => foreign.has(endingOf(name));

const looks = new Set(['picture', 'video', 'sound', 'text', 'pdf']);
export const isViewable = entry => looks.has(entry.kind)
  && !(entry.kind === 'pdf' && !navigator.pdfViewerEnabled);
