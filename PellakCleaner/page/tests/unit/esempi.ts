import type { Finding, Gruppo, Sezione, Voce } from "../../src/rotte";

export function voce(path: string, size: number): Voce {
  return { path, size, size_h: `${size} B`, when: "-", mtime: 1 };
}

export function gruppo(paths: string[], size = 10): Gruppo {
  const icona = { bundle: "", icon_src: "", url: "", name: "" };
  const stato = { spento: false, admin: false, system: false };
  return {
    ...icona,
    ...stato,
    size,
    size_h: `${size} B`,
    pesi: [],
    deboli: [],
    paths,
    libera: size,
  };
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
    total_h: "",
    count: items.length + groups.length,
    kind: "",
    items,
    groups,
    libera: items.reduce((somma, v) => somma + (v.libera ?? v.size), 0),
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
