/** A picture of the program's own, as the address of its data. */
declare module "*.svg" {
  const indirizzo: string;
  export default indirizzo;
}
