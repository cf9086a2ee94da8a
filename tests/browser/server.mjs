// The program under test, on a share and a home folder of its own.

import { spawn } from 'node:child_process';
import { mkdtemp, mkdir, rm, utimes, writeFile } from 'node:fs/promises';
import { once } from 'node:events';
import { tmpdir } from 'node:os';
import { dirname, join } from 'node:path';
import { createInterface } from 'node:readline';

// A profile that asks for the name and the password of `account`, "name:password": its values in the
// order and the form of the program's file.
function profileFor(account) {
  const number = value => {
    const bytes = Buffer.alloc(4);
    bytes.writeInt32BE(value);
    return bytes;
  };
  const text = value => Buffer.concat([number(value.length * 2), Buffer.from(value, 'utf16le').swap16()]);
  const before = [8080, 0].map(number); // the port, no encryption
  const after = [2, 2, 2, 2, 2, 2, 0, 4, 0, 600].map(number); // all is allowed; who asks needs a login
  return Buffer.concat([number(1), text(account), number(0), ...before, Buffer.of(0), ...after,
    ...Array(7).fill(text('')), Buffer.of(1), number(314)]);
}

export class Server {
  #folder;
  #process;
  #command;

  // Starts `program`; `resources` is the folder with its icons, `mode` says whom it answers how,
  // `rules` are lines of the profile's text file; where there is an `account`, all must log in.
  static async start(program, resources, mode = 'auto', rules = '', account = null) {
    const server = new Server();
    server.#folder = await mkdtemp(join(tmpdir(), 'quillon-browser-'));
    server.share = join(server.#folder, 'share');
    server.home = join(server.#folder, 'home');
    await mkdir(server.share);
    await mkdir(join(server.home, '.quillon'), { recursive: true });
    await writeFile(join(server.home, '.quillon/Global.conf.ini'), rules);
    if (account)
      await writeFile(join(server.home, '.quillon/Global.conf'), profileFor(account));
    server.#command = { program, resources, mode };
    await server.#run(0);
    return server;
  }

  async #run(port) {
    const { program, resources, mode } = this.#command;
    this.#process = spawn(
      program, ['--address', '127.0.0.1', '--port', port, '--mode', mode, this.share], {
        env: { ...process.env, HOME: this.home, QUILLON_RESDIR: resources, LC_ALL: 'C.UTF-8', TZ: 'UTC' },
        stdio: ['ignore', 'pipe', 'inherit'],
      });
    this.url = await this.#announcedUrl();
  }

  // Ends the server in the middle of whatever it does, and starts it once more.
  async crash() {
    const exited = once(this.#process, 'exit');
    this.#process.kill('SIGKILL');
    await exited;
    await this.#run(new URL(this.url).port);
  }

  async #announcedUrl() {
    for await (const line of createInterface({ input: this.#process.stdout })) {
      const found = /http:\/\/[^ ]+/.exec(line);
      if (found)
        return found[0];
    }
    throw new Error('the server ended before it listened');
  }

  // Adds a file to the share, `age` days old.
  async add(name, content = '', age = 0) {
    const path = join(this.share, name);
    await mkdir(dirname(path), { recursive: true });
    await writeFile(path, content);
    const time = new Date(Date.UTC(2024, 5, 30) - age * 24 * 3600 * 1000);
    await utimes(path, time, time);
  }

  // Ends the server in order; gives its exit status.
  async stop() {
    const exited = once(this.#process, 'exit');
    this.#process.kill('SIGTERM');
    const [status] = await exited;
    return status;
  }

  async removeFolder() {
    await rm(this.#folder, { recursive: true, force: true });
  }
}
