-- SPDX-License-Identifier: Apache-2.0
-- A chain of stages that work on random data: vectors, bits, integers, states and booleans, about
-- 12,000 scalars of which a third changes in every cycle.
library ieee;
use ieee.std_logic_1164.all;
use ieee.numeric_std.all;

entity stage is
  generic (number : natural);
  port (clock : in std_logic;
        data_in : in std_logic_vector(31 downto 0);
        data_out : out std_logic_vector(31 downto 0));
end entity;

architecture behaviour of stage is
  type state is (idle, load, shift, add, store);
  signal mood : state := state'val(number mod 5);
  signal sum : integer range 0 to 65535 := number;
  signal held : std_logic_vector(31 downto 0) := std_logic_vector(to_unsigned(number + 1, 32));
  signal mixed : std_logic_vector(31 downto 0);
  signal is_odd : boolean;
  signal parity : bit;
begin
  mixed <= held xor data_in;
  is_odd <= sum mod 2 = 1;
  parity <= to_bit(xor held);
  data_out <= held;
  process (clock)
  begin
    if rising_edge(clock) then
      held <= held(30 downto 0) & (held(31) xor held(21) xor held(1) xor mixed(0));
      sum <= (sum + to_integer(unsigned(mixed(9 downto 0)))) mod 65536;
      if mixed(1 downto 0) = "11" then
        mood <= state'val((state'pos(mood) + 1) mod 5);
      end if;
    end if;
  end process;
end architecture;

library ieee;
use ieee.std_logic_1164.all;

entity stages is
  generic (cycles : positive := 100; count : positive := 120);
end entity;

architecture behaviour of stages is
  type links is array (natural range <>) of std_logic_vector(31 downto 0);
  signal clock : std_logic := '0';
  signal link : links(0 to count);
begin
  process
  begin
    for i in 1 to cycles loop
      wait for 5 ns;
      clock <= '1';
      wait for 5 ns;
      clock <= '0';
    end loop;
    wait;
  end process;
  link(0) <= link(count);
  each : for i in 1 to count generate
    one : entity work.stage
      generic map (number => i * 7919)
      port map (clock => clock, data_in => link(i - 1), data_out => link(i));
  end generate;
end architecture;
