-- SPDX-License-Identifier: Apache-2.0
-- A design with a signal of every type, driven at random, and a count of its activity that the
-- design makes of itself. Each counter writes one line to the output when the last window closes:
--     count NAME T0 T1 TX TC IG
-- in picoseconds, NAME below the instance dut. What the recorder takes for a bit, and which of its
-- values are 0, 1 and X, is written down once more in the list at the end of the architecture.

library ieee;
use ieee.std_logic_1164.all;

package kinds is
  type state is (idle, run, 'x', \Odd Name\, halt);
  type three is ('0', '1', 'Z');
  type shuffled is ('U', 'X', '0', '1', 'Z', 'W', 'L', '-', 'H');
  type charge is range 0 to 100000 units fc; pc = 1000 fc; end units;
  subtype shade is state range run to \Odd Name\;
  subtype byte_number is integer range 0 to 255;
  subtype digit is integer range 0 to 9;

  type words is array (natural range <>) of std_logic_vector(3 downto 0);
  type grid is array (natural range <>, natural range <>) of bit;
  type digits is array (integer range <>) of digit;
  type by_state is array (state) of boolean;
  type loose_words is array (natural range <>) of std_logic_vector;
  type real_pair is array (0 to 1) of real;
  type time_pair is array (0 to 1) of time;

  type packet is record
    valid : std_ulogic;
    data : std_logic_vector(1 downto 0);
    left : digit;
    mood : state;
    gain : real;
  end record;
  type packets is array (natural range <>) of packet;
  type loose is record
    tag : bit;
    payload : std_logic_vector;
    nested : loose_words;
  end record;

  type windows is array (1 to 2, 1 to 2) of time;
  constant window : windows := ((0 ns, 4 us), (5003 ns, 19 us));

  signal common : std_logic := '0';

  function level(value : std_ulogic) return std_ulogic;
  function level(value : bit) return std_ulogic;
  function level(value : boolean) return std_ulogic;
  function level(value : integer; place : natural) return std_ulogic;
  function levels(value : integer; width : positive) return std_ulogic_vector;
end package;

library ieee;
use ieee.numeric_std.all;

package body kinds is
  function level(value : std_ulogic) return std_ulogic is
  begin
    case value is
      when '0' | '1' => return value;
      when others => return 'X';
    end case;
  end function;
  function level(value : bit) return std_ulogic is
  begin
    return to_stdulogic(value);
  end function;
  function level(value : boolean) return std_ulogic is
  begin
    if value then return '1'; else return '0'; end if;
  end function;
  function level(value : integer; place : natural) return std_ulogic is
  begin
    return to_signed(value, 32)(place);
  end function;
  function levels(value : integer; width : positive) return std_ulogic_vector is
  begin
    return std_ulogic_vector(to_signed(value, 33)(width - 1 downto 0));
  end function;
end package body;

-- Counts one bit by its value at the end of each time.
library ieee;
use ieee.std_logic_1164.all;
use work.kinds.all;

entity counter is
  generic (name : string);
  port (now_is : in std_ulogic);
end entity;

architecture behaviour of counter is
begin
  postponed process
    variable t0, t1, tx : time := 0 ns;
    variable toggles, glitches : natural := 0;
    variable last : std_ulogic;
    variable level_before : std_ulogic; -- 'U' or 'X' until there was one in this window
    variable since : time;
  begin
    for w in window'range(1) loop
      if window(w, 1) > now then
        wait for window(w, 1) - now;
      end if;
      last := now_is;
      level_before := now_is;
      since := now;
      while now < window(w, 2) loop
        wait on now_is for window(w, 2) - now;
        case last is
          when '0' => t0 := t0 + (now - since);
          when '1' => t1 := t1 + (now - since);
          when others => tx := tx + (now - since);
        end case;
        since := now;
        if now = 0 ns then
          -- a waveform begins with the values that time 0 ends with
          level_before := now_is;
        elsif now_is /= 'X' then
          if now_is = not level_before then
            toggles := toggles + 1;
          elsif now_is = level_before and last = 'X' then
            glitches := glitches + 1;
          end if;
          level_before := now_is;
        end if;
        last := now_is;
      end loop;
    end loop;
    std.textio.write(std.textio.output,
      "count " & name & " " & integer'image(t0 / 1 ps) & " " & integer'image(t1 / 1 ps) & " " &
      integer'image(tx / 1 ps) & " " & integer'image(toggles) & " " & integer'image(glitches) & LF);
    wait;
  end process;
end architecture;

-- The same for each bit of a vector, under its index.
library ieee;
use ieee.std_logic_1164.all;

entity counters is
  generic (name : string);
  port (now_are : in std_ulogic_vector);
end entity;

architecture behaviour of counters is
begin
  each: for i in now_are'range generate
    c: entity work.counter generic map (name & "(" & integer'image(i) & ")")
      port map (now_are(i));
  end generate;
end architecture;

-- An instance whose ports are parts of the signals above it.
library ieee;
use ieee.std_logic_1164.all;
use work.kinds.all;

entity part is
  port (clock : in std_logic;
        nibble : in std_logic_vector(3 downto 0);
        crossed : in bit_vector(1 downto 0);
        packet_in : in packet;
        mood : buffer state;
        pad : inout std_logic;
        parity : out std_logic);
end entity;

architecture behaviour of part is
  signal steps : integer range 0 to 6 := 0;
begin
  parity <= xor nibble;
  pad <= '0' when steps = 3 else 'Z';
  clocked: process (clock) is
  begin
    if rising_edge(clock) then
      steps <= (steps + 1) mod 7;
      mood <= state'val(steps mod 5);
    end if;
  end process;
end architecture;

library ieee;
use ieee.std_logic_1164.all;
use ieee.math_real.all;
use work.kinds.all;

entity dut is
end entity;

architecture behaviour of dut is
  signal clock : std_logic := '0';
  signal wired : std_logic; -- three drivers
  signal plain : std_ulogic;
  signal narrow : x01;
  signal b : bit;
  signal truth : boolean;
  signal settled : boolean := false; -- changes in a delta cycle of time 0
  signal letter : character := 'a';
  signal st : state;
  signal sub : shade := run;
  signal tri : three;
  signal nine : shuffled;
  signal small : byte_number;
  signal larger : integer range 0 to 256;
  signal nought : integer range 0 to 0;
  signal falling : integer range 15 downto 0 := 6;
  signal full : integer := 0;
  signal minus : integer range -5 to -1;
  signal amount : charge;
  signal moment : time := 0 ns;
  signal ratio : real := 0.5;
  signal vector : std_logic_vector(7 downto 0) := (others => '0');
  signal upward : bit_vector(1 to 3);
  signal text : string(1 to 2) := "ab";
  signal memory : words(0 to 2);
  signal square : grid(0 to 1, 3 downto 2);
  signal numbers : digits(-1 to 1);
  signal seen : by_state;
  signal pair_of_reals : real_pair;
  signal pair_of_times : time_pair;
  signal one : packet;
  signal many : packets(2 downto 1);
  signal open_words : loose_words(4 to 5)(1 downto 0);
  signal open_record : loose(payload(0 to 1), nested(0 to 0)(2 to 3));
  signal nothing : bit_vector(0 downto 1);
  signal answer : std_logic;
  signal pad : std_logic;
  signal mood : state;
begin
  clock <= not clock after 5 ns when now < 19.9 us;
  settled <= true;

  process
    variable seed1 : positive := 17;
    variable seed2 : positive := 4711;
    impure function random(count : positive) return natural is
      variable x : real;
    begin
      uniform(seed1, seed2, x);
      return integer(floor(x * real(count)));
    end function;
    impure function some return std_ulogic is
      -- 0 and 1 more often than the others
      constant choice : string(1 to 14) := "0101010UXZWLH-";
    begin
      return std_ulogic'value("'" & choice(random(14) + 1) & "'");
    end function;
    impure function some_packet return packet is
    begin
      return (some, some & some, random(10), state'val(random(5)), real(random(3)));
    end function;
    procedure change(number : natural) is
    begin
      case number is
        when 0 => plain <= some;
        when 1 => wired <= some;
        when 2 => narrow <= to_x01(some);
        when 3 => b <= bit'val(random(2));
        when 4 => truth <= boolean'val(random(2));
        when 5 => letter <= character'val(random(256));
        when 6 => st <= state'val(random(5));
        when 7 => sub <= shade'val(1 + random(3));
        when 8 => tri <= three'val(random(3));
        when 9 => nine <= shuffled'val(random(9));
        when 10 => small <= random(256);
        when 11 => larger <= random(257);
        when 12 => falling <= random(16);
        when 13 => full <= (random(65536) - 32768) * 65536 + random(65536);
        when 14 => minus <= -1 - random(5);
        when 15 => amount <= random(100) * 1 fc;
        when 16 => moment <= random(100) * 1 ns;
        when 17 => ratio <= real(random(100));
        when 18 => vector(random(8)) <= some;
        when 19 => upward <= bit_vector'(bit'val(random(2)), bit'val(random(2)), b);
        when 20 => text(1 + random(2)) <= character'val(random(256));
        when 21 => memory(random(3))(random(4)) <= some;
        when 22 => square(random(2), 2 + random(2)) <= bit'val(random(2));
        when 23 => numbers(random(3) - 1) <= random(10);
        when 24 => seen(state'val(random(5))) <= boolean'val(random(2));
        when 25 => one <= some_packet;
        when 26 => many(1 + random(2)) <= some_packet;
        when 27 => open_words(4 + random(2)) <= some & some;
        when 28 => open_record <= (bit'val(random(2)), some & some, (0 => (some, some)));
        when 29 => pair_of_reals(random(2)) <= real(random(9));
        when others => pair_of_times(random(2)) <= random(9) * 1 ns;
      end case;
    end procedure;
  begin
    while now < 19.9 us loop
      wait for random(2000) * 1 ps;
      for i in 1 to 1 + random(4) loop
        change(random(31));
      end loop;
      if random(3) = 0 then
        -- pulses of no length
        wait for 0 ns;
        for i in 0 to 30 loop
          change(i);
        end loop;
      end if;
    end loop;
    wait;
  end process;

  wired <= 'Z';
  named: process (clock)
  begin
    wired <= 'H' when clock = '1' else 'Z';
  end process;

  u1: entity work.part
    port map (clock => clock, nibble => vector(6 downto 3), crossed(0) => upward(1),
              crossed(1) => b, packet_in => one, mood => mood, pad => pad, parity => answer);

  copies: for i in 1 to 2 generate
    signal copy : std_logic_vector(1 downto 0);
  begin
    copy <= vector(i + 1 downto i);
    deeper: if i = 2 generate
      u2: entity work.part
        port map (clock => clock, nibble => memory(i), crossed => "01", packet_in => many(i),
                  mood => open, pad => pad, parity => open);
    end generate;
    per_state: for s in idle to run generate
      signal is_it : boolean;
    begin
      is_it <= st = s;
    end generate;
  end generate;

  inner: block
    port (letter_in : in character);
    port map (letter_in => letter);
    signal twice : bit;
  begin
    twice <= b after 1 ns;
    common <= plain;
    c: entity work.counter generic map ("inner/twice")
        port map (level(twice));
  end block;

  counters: block
  begin
    c1: entity work.counter generic map ("clock") port map (level(clock));
    c2: entity work.counter generic map ("wired") port map (level(wired));
    c3: entity work.counter generic map ("plain") port map (level(plain));
    c4: entity work.counter generic map ("narrow") port map (level(narrow));
    c5: entity work.counter generic map ("b") port map (level(b));
    c6: entity work.counter generic map ("truth") port map (level(truth));
    c7: entity work.counter generic map ("settled") port map (level(settled));
    c8: entity work.counters generic map ("letter") port map (levels(character'pos(letter), 8));
    c9: entity work.counters generic map ("st") port map (levels(state'pos(st), 3));
    c10: entity work.counters generic map ("sub") port map (levels(state'pos(sub), 3));
    c11: entity work.counters generic map ("tri") port map (levels(three'pos(tri), 2));
    c12: entity work.counters generic map ("nine") port map (levels(shuffled'pos(nine), 4));
    c13: entity work.counters generic map ("small") port map (levels(small, 8));
    c14: entity work.counters generic map ("larger") port map (levels(larger, 9));
    c15: entity work.counter generic map ("nought") port map (level(nought, 0));
    c16: entity work.counter generic map ("falling") port map (level(falling, 0));
    c17: entity work.counters generic map ("full") port map (levels(full, 31));
    c18: entity work.counters generic map ("minus") port map (levels(minus, 32));
    g19: for i in vector'range generate
      c: entity work.counter generic map ("vector(" & integer'image(i) & ")")
        port map (level(vector(i)));
    end generate;
    g20: for i in upward'range generate
      c: entity work.counter generic map ("upward(" & integer'image(i) & ")")
        port map (level(upward(i)));
    end generate;
    c21: entity work.counters generic map ("text(2)") port map (levels(character'pos(text(2)), 8));
    g22: for i in memory'range generate
      c: entity work.counter generic map ("memory(" & integer'image(i) & ")(3)")
        port map (level(memory(i)(3)));
    end generate;
    g23: for i in memory(1)'range generate
      c: entity work.counter generic map ("memory(1)(" & integer'image(i) & ")")
        port map (level(memory(1)(i)));
    end generate;
    g24: for i in 2 to 3 generate
      c: entity work.counter generic map ("square(1)(" & integer'image(i) & ")")
        port map (level(square(1, i)));
    end generate;
    g25: for i in 0 to 1 generate
      c: entity work.counter generic map ("square(" & integer'image(i) & ")(2)")
        port map (level(square(i, 2)));
    end generate;
    c26: entity work.counters generic map ("numbers(-1)") port map (levels(numbers(-1), 4));
    g27: for i in 0 to 4 generate
      c: entity work.counter generic map ("seen(" & integer'image(i) & ")")
        port map (level(seen(state'val(i))));
    end generate;
    c28: entity work.counter generic map ("one.valid") port map (level(one.valid));
    g29: for i in 0 to 1 generate
      c: entity work.counter generic map ("one.data(" & integer'image(i) & ")")
        port map (level(one.data(i)));
    end generate;
    c30: entity work.counters generic map ("one.left") port map (levels(one.left, 4));
    c31: entity work.counters generic map ("one.mood") port map (levels(state'pos(one.mood), 3));
    c32: entity work.counter generic map ("many(1).valid") port map (level(many(1).valid));
    g33: for i in 0 to 1 generate
      c: entity work.counter generic map ("many(1).data(" & integer'image(i) & ")")
        port map (level(many(1).data(i)));
    end generate;
    c34: entity work.counters generic map ("many(1).left") port map (levels(many(1).left, 4));
    c35: entity work.counters generic map ("many(1).mood")
      port map (levels(state'pos(many(1).mood), 3));
    g36: for i in 4 to 5 generate
      c: entity work.counter generic map ("open_words(" & integer'image(i) & ")(1)")
        port map (level(open_words(i)(1)));
    end generate;
    c37: entity work.counter generic map ("open_record.tag") port map (level(open_record.tag));
    g38: for i in 0 to 1 generate
      c: entity work.counter generic map ("open_record.payload(" & integer'image(i) & ")")
        port map (level(open_record.payload(i)));
    end generate;
    g39: for i in 2 to 3 generate
      c: entity work.counter generic map ("open_record.nested(0)(" & integer'image(i) & ")")
        port map (level(open_record.nested(0)(i)));
    end generate;
    c40: entity work.counter generic map ("u1/parity") port map (level(answer));
    c41: entity work.counter generic map ("u1/pad") port map (level(pad));
    c42: entity work.counter generic map ("u1/clock") port map (level(clock));
    g43: for i in 0 to 3 generate
      c: entity work.counter generic map ("u1/nibble(" & integer'image(i) & ")")
        port map (level(vector(i + 3)));
    end generate;
    c44: entity work.counter generic map ("u1/crossed(0)") port map (level(upward(1)));
    c45: entity work.counter generic map ("u1/crossed(1)") port map (level(b));
    c46: entity work.counters generic map ("u1/mood") port map (levels(state'pos(mood), 3));
    c47: entity work.counters generic map ("u1/packet_in.left") port map (levels(one.left, 4));
    g48: for i in 0 to 3 generate
      c: entity work.counter generic map ("copies(2)/deeper/u2/nibble(" & integer'image(i) & ")")
        port map (level(memory(2)(i)));
    end generate;
    c49: entity work.counter generic map ("copies(2)/deeper/u2/packet_in.valid")
      port map (level(many(2).valid));
    c50: entity work.counter generic map ("copies(1)/per_state(run)/is_it") port map (level(st = run));
  end block;
end architecture;
