// The same as velwb_comparison, with a document of the CRDT library Yjs:
//
//   node crdt_store.js record FOLDER LESSON BEFORE
//   node crdt_store.js open FOLDER
//
// Each change is appended to a file at once, as a transaction's update; a save writes the document's
// compact form in its place. Prints what it measured as one JSON object.
'use strict';
const fs = require('fs');
const Y = require('yjs');

const SECONDS_BETWEEN_SAVES = 20;

/** Microseconds of a clock that never goes back. */
const now = () => Number(process.hrtime.bigint()) / 1000;

function timed(call) {
  const start = now();
  call();
  return now() - start;
}

class Store {
  constructor(folder) {
    this.changes = folder + '/board.updates';
    this.compact = folder + '/board.ydoc';
    this.document = new Y.Doc();
  }

  beginRecording() {
    this.file = fs.openSync(this.changes, 'a');
    this.document.on('update', (update) => {
      const size = Buffer.alloc(4);
      size.writeUInt32LE(update.length);
      fs.writevSync(this.file, [size, update]);
    });
  }

  show(page) {
    this.document.transact(() => {
      const entries = new Y.Map();
      this.document.getMap('pages').set(page, entries);
      this.document.getArray('order').push([page]);
      this.entries = entries;
    });
  }

  take(text) {
    const vector = JSON.parse(text);
    this.document.transact(() => {
      let entry = this.entries.get(vector.ID);
      let path = entry && entry.get('path');
      if (!entry) {
        entry = new Y.Map();
        path = new Y.Array();
        this.entries.set(vector.ID, entry);
        entry.set('path', path);
        for (const name of ['type', 'color', 'widthIndex', 'pixel', 'ps']) entry.set(name, vector[name]);
      }
      path.push(vector.path);
      for (const name of ['ts', 'x', 'y', 'end']) entry.set(name, vector[name]);
    });
  }

  save() {
    const draft = fs.openSync(this.compact + '.new', 'w');
    fs.writeSync(draft, Y.encodeStateAsUpdate(this.document));
    fs.fsyncSync(draft);
    fs.closeSync(draft);
    fs.renameSync(this.compact + '.new', this.compact);
    fs.ftruncateSync(this.file);
  }

  openNewestPage() {
    Y.applyUpdate(this.document, fs.readFileSync(this.compact));
    const order = this.document.getArray('order');
    const page = this.document.getMap('pages').get(order.get(order.length - 1));
    const content = { entries: 0, positions: 0 };
    for (const entry of page.toJSON ? Object.values(page.toJSON()) : []) {
      content.entries += 1;
      content.positions += entry.path.length;
    }
    return content;
  }
}

function record(folder, lesson, before) {
  const store = new Store(folder);
  store.beginRecording();
  const pieces = [];
  const saves = [];
  let lastSave = 0;
  const texts = fs.readFileSync(lesson, 'utf8').split('\n').filter((line) => line);
  texts.forEach((text, count) => {
    const vector = JSON.parse(text);
    if (count === before) lastSave = vector.ts;
    if (vector.type === 'switchPage') store.show(`${vector.WBID}_${vector.curPage}`);
    else pieces.push(timed(() => store.take(text)));
    if (count < before) {
      pieces.length = 0;
    } else if (vector.ts - lastSave >= SECONDS_BETWEEN_SAVES) {
      saves.push(timed(() => store.save()));
      lastSave = vector.ts;
    }
  });
  saves.push(timed(() => store.save()));
  pieces.sort((left, right) => left - right);
  return {
    pieces: pieces.length,
    piece_median_us: pieces[Math.floor(pieces.length / 2)],
    piece_p999_us: pieces[Math.floor(pieces.length * 0.999)],
    save_longest_us: Math.max(...saves),
  };
}

function open(folder) {
  let content;
  const taken = timed(() => {
    content = new Store(folder).openNewestPage();
  });
  return { open_us: taken, ...content };
}

const [what, folder, lesson, before] = process.argv.slice(2);
console.log(JSON.stringify(what === 'record' ? record(folder, lesson, Number(before)) : open(folder)));
