import { createHash } from "node:crypto";
import type { Plugin } from "vite";

const sha256 = (text: string) =>
  `'sha256-${createHash("sha256").update(text, "utf8").digest("base64")}'`;

/**
 * Puts script and styles into the HTML file itself, renames it and adds a policy that lets only
 * these two run: no address outside the page can be reached from it.
 */
export function unicoFile(nome: string): Plugin {
  return {
    name: "pellak-unico-file",
    apply: "build",
    enforce: "post",
    generateBundle(_opzioni, bundle) {
      let pagina = "";
      let script = "";
      let stili = "";
      for (const [file, parte] of Object.entries(bundle)) {
        if (parte.type === "chunk") script += parte.code;
        else if (file.endsWith(".css")) stili += String(parte.source);
        else if (file.endsWith(".html")) pagina = String(parte.source);
        else this.error(`${file} would lie beside the page`);
        delete bundle[file];
      }
      script = script
        .replace(/<\/(script)/gi, "<\\/$1")
        .replace(/<!--/g, "<\\!--")
        .trim();
      stili = stili.trim();
      const regole = [
        "default-src 'none'",
        `script-src ${sha256(script)}`,
        `style-src ${sha256(stili)}`,
        "img-src data:",
        "base-uri 'none'",
        "form-action 'none'",
      ].join("; ");
      const source = pagina
        .replace(/\s*<script[^>]*src=[^>]*><\/script>/g, "")
        .replace(/\s*<link[^>]*rel="(?:stylesheet|modulepreload)"[^>]*>/g, "")
        .replace(
          "<title>",
          () => `<meta http-equiv="Content-Security-Policy" content="${regole}" />\n    <title>`,
        )
        .replace("</head>", () => `  <style>${stili}</style>\n  </head>`)
        .replace("</body>", () => `  <script>${script}</script>\n  </body>`);
      this.emitFile({ type: "asset", fileName: nome, source });
    },
  };
}
