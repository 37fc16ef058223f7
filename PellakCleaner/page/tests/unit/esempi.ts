import type { Finding, Gruppo, Sezione, Voce } from "../../src/rotte";

export function voce(path: string, size: number): Voce {
  return { path, size, size_h: `${size} B`, when: "-", mtime: 1 };
}

export function gruppo(paths: string[], size = 10, dati: Partial<Gruppo> = {}): Gruppo {
  const nessuno = { name: "", bundle: "", icon_src: "", url: "" };
  const stato = { spento: false, admin: false, system: false };
  const size_h = `${size} B`;
  const pesi = { pesi: [], deboli: [] };
  return { ...nessuno, ...stato, ...pesi, size, size_h, paths, libera: size, ...dati };
}

export function finding(id: string, dati: Partial<Finding> = {}): Finding {
  const { items = [], groups = [] } = dati;
  return {
    id,
    name: id,
    mode: "delete",
    note: "",
    hint: "",
    unmeasured: false,
    total: items.reduce((somma, v) => somma + v.size, 0),
    total_h: "0 B",
    count: items.length + groups.length,
    kind: "",
    items,
    groups,
    libera: dati.total ?? items.reduce((somma, v) => somma + (v.libera ?? v.size), 0),
    ...dati,
  };
}

export function sezione(id: string, findings: Finding[], dati: Partial<Sezione> = {}): Sezione {
  return {
    id,
    name: id,
    desc: "",
    scanning: false,
    scanned: true,
    queued: false,
    status: "",
    denied: 0,
    denied_top: [],
    last_scan: 1,
    total: findings.reduce((somma, f) => somma + f.total, 0),
    total_h: "",
    findings,
    libera: findings.reduce((somma, f) => somma + f.libera, 0),
    disponibile: true,
    ...dati,
  };
}
